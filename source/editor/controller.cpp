#include "editor/controller.h"

#include "orvlevel/level.h"
#include "platform/platform.h"
#include "things/pickup.h"
#include "things/spaceship.h"

#include <cstdlib>

ORVEDITOR::ORVEDITOR(ORVEDOCUMENT& document, CAMERA& camera) : Document(document), Camera(camera)
{
}

namespace {

const ORVECOMMANDENTRY CommandTable[] = {
    {CM_NEWSEGMENT, [](ORVEDITOR& e) { e.Level().NewSegment(); }},
    {CM_NEXTPOINT, [](ORVEDITOR& e) { e.Level().NextPointOnSide(); }},
    {CM_POINTZPLUS, [](ORVEDITOR& e) { e.Level().MovePoint(0, 0, e.PointStep); }},
    {CM_POINTZMINUS, [](ORVEDITOR& e) { e.Level().MovePoint(0, 0, -e.PointStep); }},
    {CM_POINTXPLUS, [](ORVEDITOR& e) { e.Level().MovePoint(e.PointStep, 0, 0); }},
    {CM_POINTXMINUS, [](ORVEDITOR& e) { e.Level().MovePoint(-e.PointStep, 0, 0); }},
    {CM_POINTYPLUS, [](ORVEDITOR& e) { e.Level().MovePoint(0, e.PointStep, 0); }},
    {CM_POINTYMINUS, [](ORVEDITOR& e) { e.Level().MovePoint(0, -e.PointStep, 0); }},
    {CM_RESTORETEXTURE, [](ORVEDITOR& e) { e.Level().RestoreTexture(); }},
    {CM_JOINMODE, [](ORVEDITOR& e) { e.JoinModeCommand(); }},
    {CM_APPLYTEXTURE, [](ORVEDITOR& e) { e.Level().ApplyTexture(); }},
    {CM_DELETESEGMENT, [](ORVEDITOR& e) { e.Level().DeleteCurrentSegment(); }},
    {CM_CLEARSIDETEXTURE, [](ORVEDITOR& e) { e.Level().ClearSideTexture(); }},
    {CM_CALCULATELIGHTING, [](ORVEDITOR& e) { e.Level().CalculateLighting(); }},
    {CM_DELETENEARESTLIGHT, [](ORVEDITOR& e) { e.Level().DeleteNearestLight(e.Camera.Position); }},
    {CM_FULLBRIGHTNESS, [](ORVEDITOR& e) { e.Level().FullBrightness(); }},
    {CM_ENEMYSHIP, [](ORVEDITOR& e) { e.PlaceEnemyShip(); }},
    {CM_STARTPOINT, [](ORVEDITOR& e) { e.PlaceStartPoint(); }},
    {CM_DELETENEARESTSPECPOINT, [](ORVEDITOR& e) { e.Level().DeleteNearestSpecPoint(e.Camera.Position); }},
    {CM_DELETENEARESTTHING, [](ORVEDITOR& e) { e.Level().DeleteNearestThing(e.Camera.Position); }},
    {CM_SHIELDBONUS, [](ORVEDITOR& e) { e.PlaceItem<P_SHIELD>(); }},
    {CM_ENERGYBONUS, [](ORVEDITOR& e) { e.PlaceItem<P_ENERGY>(); }},
    {CM_TEMPESTPICKUP, [](ORVEDITOR& e) { e.PlaceItem<P_TEMPEST>(); }},
    {CM_LASERBOOST, [](ORVEDITOR& e) { e.PlaceItem<P_LASERBOOST>(); }},
    {CM_SHIPLEVEL, [](ORVEDITOR& e) { e.PlaceItem<P_SHIPLEVEL>(); }},
    {CM_FITMODE, [](ORVEDITOR& e) { e.FitModeCommand(); }},
};

const ORVECOMMANDENTRY* FindCommand(int id)
{
    for (const ORVECOMMANDENTRY& c : CommandTable)
        if (c.Id == id)
            return &c;
    return FindBlockCommand(id);
}

} // namespace

std::span<const ORVECOMMANDENTRY> ORVEDITOR::Commands()
{
    return CommandTable;
}

bool ORVEDITOR::HasCommand(int id)
{
    return FindCommand(id) != nullptr;
}

bool ORVEDITOR::Command(int id)
{
    const ORVECOMMANDENTRY* c = FindCommand(id);
    if (!c)
        return false;
    c->Run(*this);
    Document.Marks.Prune(Level()); // the command may have deleted marked segments
    return true;
}

void ORVEDITOR::PlaceStartPoint()
{
    SPECPOINT start;
    start.Position = Camera.Position;
    start.Type = 0; // single-player start
    Level().Add(start);
}

void ORVEDITOR::PlaceEnemyShip()
{
    // The ship takes the camera's whole frame and stays where it was put.
    HandToLevel(&Level(), NewShipAt(Camera, 3, 0));
}

template <class ITEM>
void ORVEDITOR::PlaceItem()
{
    // Items sit at the camera but world-aligned, whatever the view's roll.
    HandToLevel(&Level(), new ITEM(Camera.Position, VECTOR3D(1, 0, 0), VECTOR3D(0, 1, 0), VECTOR3D(0, 0, 1)));
}

void ORVEDITOR::JoinModeCommand()
{
    if (JoinMode)
    {
        JoinMode = false;
        return;
    }
    if (!Level().GetCurrentSide())
    {
        InfoBeep();
        return;
    }
    JoinMode = true;
    JoinShift = JoinDialog ? JoinDialog() : ShiftFromEntry("3");
}

void ORVEDITOR::FitModeCommand()
{
    if (FitMode)
        FitMode = false;
    else if (Level().GetCurrentSide())
        FitMode = true;
    else
        InfoBeep();
}

void ORVEDITOR::LeftClick(int x, int y)
{
    ORVLEVEL& level = Level();
    if (JoinMode)
    {
        if (level.JoinWithPicked(x, y, Camera, ClientWidth, ClientHeight, JoinShift))
            JoinMode = false;
        else
            InfoBeep();
    }
    if (FitMode)
    {
        if (!level.FitTextureToPicked(x, y, Camera, ClientWidth, ClientHeight))
            InfoBeep();
    }
    else
        level.PickSide(x, y, Camera, ClientWidth, ClientHeight);
}

int32_t ORVEDITOR::ShiftFromEntry(const char* text)
{
    // The long is narrowed the way the dialog's int field takes it.
    long k = std::strtol(text, nullptr, 10);
    return static_cast<int32_t>(static_cast<uint32_t>(3) - static_cast<uint32_t>(static_cast<uint64_t>(k)));
}
