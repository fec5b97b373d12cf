// The editor's commands and clicks, its undo history and the document's
// revision, name and modified state.
#include "editor/controller.h"

#include "math/geometry.h"
#include "orvlevel/level.h"
#include "orvlevel/tests/leveltesting.h"
#include "platform/tests/testplatform.h"
#include "things/pickup.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <cmath>
#include <functional>

namespace {

class ControllerTest : public PlatformTest
{
protected:
    ControllerTest()
    {
        LoadThingMeshes();
        RegisterThingClasses();
    }
    ORVEDOCUMENT Doc;
    ORVLEVEL& L = Doc.Level();
    ORVEHISTORY& H = Doc.History;
    CAMERA Cam;
    ORVEDITOR Editor{Doc, Cam};
    void Look(VECTOR3D from, VECTOR3D dir, VECTOR3D up) { Cam.Position = from, Cam.ViewDir = dir, Cam.Up = up, Cam.Right = Cross(dir, up); }

    // One user action, as the window runs it.
    bool Act(int id)
    {
        H.Begin();
        Editor.Command(id);
        return H.Checkpoint();
    }
    bool Advances(const std::function<void()>& change)
    {
        uint64_t before = Doc.Revision();
        change();
        return Doc.Revision() > before;
    }
};

} // namespace

TEST_F(ControllerTest, ClicksFollowTheModes)
{
    int b = AddCubeCopy(L, {0, 400, 0});
    Look({0, 400, 0}, {0, -1, 0}, {0, 0, -1}); // inside b, looking at its side 2

    // A failed join (the selected side clicked again) beeps, keeps the mode
    // and still picks.
    L.CurrentSegment = b, L.CurrentSide = 2;
    Editor.Command(CM_JOINMODE);
    ASSERT_TRUE(Editor.JoinMode);
    Editor.LeftClick(320, 240);
    EXPECT_TRUE(P().Beeps == 1 && Editor.JoinMode && L.CurrentSegment == b && L.CurrentSide == 2);

    // Both modes: the join comes first, succeeds and ends join mode; it has
    // moved the selection to the clicked side, so the fit that follows has
    // the same side twice, fails and beeps, and fit mode stays on.
    Editor.Command(CM_FITMODE);
    L.CurrentSegment = 0, L.CurrentSide = 0;
    Editor.LeftClick(320, 240);
    EXPECT_TRUE(L.FindSegment({0, 200, 0}) == b && P().Beeps == 2 && !Editor.JoinMode && Editor.FitMode);
    EXPECT_TRUE(L.CurrentSegment == b && L.CurrentSide == 2);

    // Fit mode alone carries the texture from the selected side.
    L.CurrentSegment = 0, L.CurrentSide = 2;
    Look({0, 0, 0}, {-1, 0, 0}, {0, 1, 0});
    Editor.LeftClick(320, 240);
    EXPECT_TRUE(P().Beeps == 2 && L.CurrentSegment == 0 && L.CurrentSide == 3);
    const TEXPAIR* t = L.Segments[0]->Sides[3].TexCoords;
    EXPECT_TRUE(std::fabs(t[0].s + 1) < 1e-4f && std::fabs(t[0].t - 1) < 1e-4f);

    // A click into nothing leaves side 0 of the segment selected: fitting
    // side 0 to itself fails.
    L.CurrentSide = 0;
    Look({0, 0, 5000}, {0, 0, 1}, {0, 1, 0});
    Editor.LeftClick(320, 240);
    EXPECT_TRUE(P().Beeps == 3 && Editor.FitMode);

    // The join dialog's entry n asks for the shift 3 - n, read as far as it is a number.
    for (auto [entry, shift] : {std::pair{"1", 2}, {" 7x", -4}, {"abc", 3}, {"-2147483648", int32_t(2147483651u)}})
        EXPECT_EQ(ORVEDITOR::ShiftFromEntry(entry), shift) << entry;
}

TEST_F(ControllerTest, ObjectPlacementAtTheCamera)
{
    // A rolled view: Up is not the world's up.
    Look({10, -20, 30}, {0, 0, -1}, {1, 0, 0});
    const struct { int Id; const char* Class; } items[] = {{CM_SHIELDBONUS, "P_SHIELD"}, {CM_ENERGYBONUS, "P_ENERGY"}, {CM_TEMPESTPICKUP, "P_TEMPEST"},
                 {CM_LASERBOOST, "P_LASERBOOST"}, {CM_SHIPLEVEL, "P_SHIPLEVEL"}};
    for (int i = 0; i < 5; ++i)
    {
        SCOPED_TRACE(items[i].Class);
        EXPECT_TRUE(ORVEDITOR::HasCommand(items[i].Id) && Editor.Command(items[i].Id));
        THING* t = L.Things[i];
        ASSERT_NE(dynamic_cast<PICKUP*>(t), nullptr);
        EXPECT_STREQ(t->ClassName(), items[i].Class);
        EXPECT_TRUE(t->position == Cam.Position && t->oldPosition == Cam.Position);
        EXPECT_TRUE(t->axisX == VECTOR3D(0, 0, 1) && t->axisY == VECTOR3D(0, 1, 0) && t->axisZ == VECTOR3D(1, 0, 0));
    }

    EXPECT_TRUE(ORVEDITOR::HasCommand(CM_ENEMYSHIP) && Editor.Command(CM_ENEMYSHIP));
    auto* ship = dynamic_cast<SPACESHIP*>(L.Things[5]);
    ASSERT_NE(ship, nullptr);
    EXPECT_TRUE(ship->position == Cam.Position && ship->goal == Cam.Position);
    EXPECT_TRUE(ship->axisX == Cam.ViewDir && ship->axisY == Cam.Up && ship->axisZ == Cam.Right && ship->oldAxisY == Cam.Up);
    EXPECT_TRUE(ship->playerControlled == 0 && ship->team == 3 && ship->target == -1);
}

TEST_F(ControllerTest, UndoAndRedoWalkBackAndForthThroughExactImages)
{
    L.CurrentSegment = 0, L.CurrentSide = 2;
    std::vector<std::vector<uint8_t>> images{L.Serialize()};
    for (int id : {CM_NEWSEGMENT, CM_POINTXPLUS, CM_CALCULATELIGHTING})
    {
        EXPECT_TRUE(Act(id));
        images.push_back(L.Serialize());
        L.CurrentSegment = 1, L.CurrentSide = 1; // a pick: not a step of its own
        EXPECT_FALSE(H.Checkpoint());
    }
    EXPECT_FALSE(Act(CM_NEXTPOINT)); // selection only
    EXPECT_EQ(H.Steps(), 3u);

    // Each undo gives the image before its step, and the selection that
    // step started from.
    const int32_t selections[3][2] = {{0, 2}, {1, 1}, {1, 1}};
    for (int step = 2; step >= 0; --step)
    {
        EXPECT_TRUE(H.Undo());
        EXPECT_EQ(L.Serialize(), images[size_t(step)]) << step;
        EXPECT_TRUE(L.CurrentSegment == selections[step][0] && L.CurrentSide == selections[step][1] && L.CurrentPoint == 0) << step;
    }
    EXPECT_TRUE(!H.Undo() && H.Redo() && H.Redo());
    EXPECT_EQ(L.Serialize(), images[2]);

    // A new step drops what could have been redone; refusals add nothing.
    L.CurrentSegment = -1;
    EXPECT_FALSE(Act(CM_NEWSEGMENT));
    EXPECT_TRUE(H.CanRedo());
    L.CurrentSegment = 0;
    EXPECT_TRUE(Act(CM_POINTYPLUS));
    EXPECT_FALSE(H.CanRedo());
    EXPECT_TRUE(P().Messages.empty());
}

TEST_F(ControllerTest, EveryChangeAdvancesTheRevisionAndNothingElseDoes)
{
    EXPECT_TRUE(TheLevel == &L && !Doc.Modified());
    L.CurrentSegment = 0, L.CurrentSide = 2;

    // Level operations, the controller's commands and clicks.
    EXPECT_TRUE(Advances([&] { Editor.Command(CM_NEWSEGMENT); }));
    EXPECT_TRUE(Doc.Modified());
    for (int id : {CM_POINTXPLUS, CM_POINTYMINUS, CM_RESTORETEXTURE, CM_APPLYTEXTURE, CM_CLEARSIDETEXTURE,
                   CM_CALCULATELIGHTING, CM_FULLBRIGHTNESS, CM_STARTPOINT, CM_DELETENEARESTSPECPOINT, CM_ENEMYSHIP,
                   CM_DELETENEARESTTHING, CM_SHIELDBONUS})
        EXPECT_TRUE(Advances([&] { Editor.Command(id); })) << id;
    int cube = AddCubeCopy(L, {1000, 0, 0});
    const std::function<void()> changes[] = {
        [&] { L.NewLight(Cam.Position, 255, 0, 0, 100); }, [&] { Editor.Command(CM_DELETENEARESTLIGHT); },
        [&] { L.Add("WallTex.bmp"); }, [&] { L.ReplaceTextureAt("InvSide.bmp", 1); }, [&] { L.DeleteTextureAt(1); },
        [&] { L.JoinSides(0, 0, cube, 2, 0); }, [&] { L.FitTexture(0, 1, 0, 4); }, [&] { L.Unlink(0, 0); },
        [&] { L.DeleteSegment(cube); }};
    for (size_t i = 0; i < std::size(changes); ++i)
        EXPECT_TRUE(Advances(changes[i])) << i;

    // Selection and camera changes, refusals and lookups leave it.
    EXPECT_FALSE(Advances([&] {
        Editor.Command(CM_NEXTPOINT);
        Cam.Move(CAM_FORWARD, 10);
        Editor.LeftClick(320, 240);
        L.FindSegment({0, 0, 0});
        (void)L.Serialize();
    }));
    L.CurrentSegment = -1;
    EXPECT_FALSE(Advances([&] {
        for (int id : {CM_NEWSEGMENT, CM_POINTZPLUS, CM_APPLYTEXTURE, CM_RESTORETEXTURE, CM_DELETESEGMENT,
                       CM_CLEARSIDETEXTURE, CM_DELETENEARESTLIGHT, CM_DELETENEARESTSPECPOINT, CM_JOINMODE})
            Editor.Command(id);
        L.JoinSides(0, 0, 0, 0, 0);
        L.FitTexture(0, 0, 0, 2); // opposite sides share no edge
    }));
    EXPECT_GT(P().Beeps, 0);
}

TEST_F(ControllerTest, OpenSaveAndSaveAsAnswerAndKeepTheModifiedState)
{
    TEMPDIR dir;
    const std::string file = (dir / "a.ORVLevel").string();

    EXPECT_FALSE(Doc.Save()); // no name yet: the caller runs Save as
    L.MovePoint(1, 0, 0);
    L.CurrentSegment = 0;
    EXPECT_TRUE(Act(CM_POINTXPLUS));
    ASSERT_TRUE(Doc.Modified());
    ASSERT_TRUE(Doc.SaveAs(file));
    EXPECT_TRUE(!Doc.Modified() && Doc.FileName() == file && H.CanUndo()); // saving keeps the history

    // A failed save keeps the name and the modified state.
    L.MovePoint(1, 0, 0);
    EXPECT_FALSE(Doc.SaveAs((dir / "missing" / "b.ORVLevel").string()));
    EXPECT_TRUE(Doc.FileName() == file && Doc.Modified());
    EXPECT_TRUE(Doc.Save() && !Doc.Modified());

    // Opening advances the revision and leaves an unmodified document with
    // no history and no marks; a failed open changes nothing.
    uint64_t before = Doc.Revision();
    L.MovePoint(1, 0, 0);
    Doc.Marks.Set(0, true);
    EXPECT_FALSE(Doc.Open((dir / "none.ORVLevel").string()));
    EXPECT_TRUE(Doc.Modified() && Doc.FileName() == file);
    ASSERT_TRUE(Doc.Open(file));
    EXPECT_TRUE(Doc.Revision() > before && !Doc.Modified() && !H.CanUndo() && Doc.Marks.Count() == 0);
}
