#include "editor/controller.h"

#include "orvlevel/tests/leveltesting.h"

#include <functional>

namespace {

class DocumentTest : public PlatformTest
{
protected:
    ORVEDOCUMENT Doc;
    ORVLEVEL& L = Doc.Level();
    CAMERA Cam;
    ORVEDITOR Editor{Doc, Cam};

    // Whether running `change` advanced the revision.
    bool Advances(const std::function<void()>& change)
    {
        uint64_t before = Doc.Revision();
        change();
        return Doc.Revision() > before;
    }
};

} // namespace

TEST_F(DocumentTest, EveryChangeAdvancesTheRevisionAndNothingElseDoes)
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

TEST_F(DocumentTest, OpenSaveAndSaveAsAnswerAndKeepTheModifiedState)
{
    TEMPDIR dir;
    const std::string file = (dir / "a.ORVLevel").string();

    EXPECT_FALSE(Doc.Save()); // no name yet: the caller runs Save as
    L.MovePoint(1, 0, 0);
    L.CurrentSegment = 0;
    L.MovePoint(1, 0, 0);
    ASSERT_TRUE(Doc.Modified());
    ASSERT_TRUE(Doc.SaveAs(file));
    EXPECT_TRUE(!Doc.Modified() && Doc.FileName() == file);

    // A failed save keeps the name and the modified state.
    L.MovePoint(1, 0, 0);
    EXPECT_FALSE(Doc.SaveAs((dir / "missing" / "b.ORVLevel").string()));
    EXPECT_TRUE(Doc.FileName() == file && Doc.Modified());
    EXPECT_TRUE(Doc.Save() && !Doc.Modified());

    // Opening advances the revision and leaves an unmodified document; a
    // failed open changes nothing.
    uint64_t before = Doc.Revision();
    L.MovePoint(1, 0, 0);
    EXPECT_FALSE(Doc.Open((dir / "none.ORVLevel").string()));
    EXPECT_TRUE(Doc.Modified() && Doc.FileName() == file);
    ASSERT_TRUE(Doc.Open(file));
    EXPECT_TRUE(Doc.Revision() > before && !Doc.Modified());
}
