#include "editor/controller.h"

#include "orvlevel/level.h"
#include "platform/platform.h"
#include "things/pickup.h"
#include "things/spaceship.h"

#include <cstdlib>

ORVEDITOR::ORVEDITOR(CAMERA& camera) : Camera(camera)
{
}

bool ORVEDITOR::HasCommand(int id)
{
    switch (id)
    {
    case CM_NEWSEGMENT:
    case CM_NEXTPOINT:
    case CM_POINTZPLUS:
    case CM_POINTZMINUS:
    case CM_POINTXPLUS:
    case CM_POINTXMINUS:
    case CM_POINTYPLUS:
    case CM_POINTYMINUS:
    case CM_RESTORETEXTURE:
    case CM_JOINMODE:
    case CM_APPLYTEXTURE:
    case CM_DELETESEGMENT:
    case CM_CLEARSIDETEXTURE:
    case CM_CALCULATELIGHTING:
    case CM_DELETENEARESTLIGHT:
    case CM_FULLBRIGHTNESS:
    case CM_STARTPOINT:
    case CM_DELETENEARESTSPECPOINT:
    case CM_FITMODE:
    case CM_ENEMYSHIP:
    case CM_DELETENEARESTTHING:
    case CM_SHIELDBONUS:
    case CM_ENERGYBONUS:
    case CM_TEMPESTPICKUP:
    case CM_LASERBOOST:
    case CM_SHIPLEVEL:
        return true;
    default:
        return false;
    }
}

bool ORVEDITOR::Command(int id)
{
    ORVLEVEL& level = *TheLevel;
    switch (id)
    {
    case CM_NEWSEGMENT: level.NewSegment(); break;
    case CM_NEXTPOINT: level.NextPointOnSide(); break;
    case CM_POINTZPLUS: level.MovePoint(0, 0, PointStep); break;
    case CM_POINTZMINUS: level.MovePoint(0, 0, -PointStep); break;
    case CM_POINTXPLUS: level.MovePoint(PointStep, 0, 0); break;
    case CM_POINTXMINUS: level.MovePoint(-PointStep, 0, 0); break;
    case CM_POINTYPLUS: level.MovePoint(0, PointStep, 0); break;
    case CM_POINTYMINUS: level.MovePoint(0, -PointStep, 0); break;
    case CM_RESTORETEXTURE: level.RestoreTexture(); break;
    case CM_JOINMODE: JoinModeCommand(); break;
    case CM_APPLYTEXTURE: level.ApplyTexture(); break;
    case CM_DELETESEGMENT: level.DeleteCurrentSegment(); break;
    case CM_CLEARSIDETEXTURE: level.ClearSideTexture(); break;
    case CM_CALCULATELIGHTING: level.CalculateLighting(); break;
    case CM_DELETENEARESTLIGHT: level.DeleteNearestLight(Camera.Position); break;
    case CM_FULLBRIGHTNESS: level.FullBrightness(); break;
    case CM_STARTPOINT:
    {
        SPECPOINT start;
        start.Position = Camera.Position;
        start.Type = 0; // single-player start
        level.Add(start);
        break;
    }
    case CM_DELETENEARESTSPECPOINT: level.DeleteNearestSpecPoint(Camera.Position); break;
    case CM_FITMODE: FitModeCommand(); break;
    case CM_ENEMYSHIP: PlaceEnemyShip(); break;
    case CM_DELETENEARESTTHING: level.DeleteNearestThing(Camera.Position); break;
    case CM_SHIELDBONUS: PlaceItem<P_SHIELD>(); break;
    case CM_ENERGYBONUS: PlaceItem<P_ENERGY>(); break;
    case CM_TEMPESTPICKUP: PlaceItem<P_TEMPEST>(); break;
    case CM_LASERBOOST: PlaceItem<P_LASERBOOST>(); break;
    case CM_SHIPLEVEL: PlaceItem<P_SHIPLEVEL>(); break;
    default: return false;
    }
    return true;
}

void ORVEDITOR::PlaceEnemyShip()
{
    auto* ship = new SPACESHIP();
    // The ship takes the camera's whole frame and stays where it was put.
    ship->position = Camera.Position;
    ship->axisY = Camera.Up;
    ship->axisZ = Camera.Right;
    ship->axisX = Camera.ViewDir;
    ship->playerControlled = 0;
    ship->team = 3;
    ship->target = -1;
    ship->goal = ship->position;
    HandToLevel(ship);
}

template <class ITEM>
void ORVEDITOR::PlaceItem()
{
    // Items sit at the camera but world-aligned, whatever the view's roll.
    HandToLevel(new ITEM(Camera.Position, VECTOR3D(1, 0, 0), VECTOR3D(0, 1, 0), VECTOR3D(0, 0, 1)));
}

void ORVEDITOR::JoinModeCommand()
{
    if (JoinMode)
    {
        JoinMode = false;
        return;
    }
    if (!TheLevel->GetCurrentSide())
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
    else if (TheLevel->GetCurrentSide())
        FitMode = true;
    else
        InfoBeep();
}

void ORVEDITOR::LeftClick(int x, int y)
{
    ORVLEVEL& level = *TheLevel;
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
