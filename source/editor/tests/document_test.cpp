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
    EXPECT_EQ(TheLevel, &L);
    EXPECT_FALSE(Doc.Modified());
    L.CurrentSegment = 0;
    L.CurrentSide = 2;

    // Level operations, the controller's commands and clicks.
    EXPECT_TRUE(Advances([&] { Editor.Command(CM_NEWSEGMENT); }));
    EXPECT_TRUE(Doc.Modified());
    for (int id : {CM_POINTXPLUS, CM_POINTYMINUS, CM_RESTORETEXTURE, CM_APPLYTEXTURE, CM_CLEARSIDETEXTURE,
                   CM_CALCULATELIGHTING, CM_FULLBRIGHTNESS, CM_STARTPOINT, CM_DELETENEARESTSPECPOINT, CM_ENEMYSHIP,
                   CM_DELETENEARESTTHING, CM_SHIELDBONUS})
        EXPECT_TRUE(Advances([&] { Editor.Command(id); })) << id;
    EXPECT_TRUE(Advances([&] { L.NewLight(Cam.Position, 255, 0, 0, 100); }));
    EXPECT_TRUE(Advances([&] { Editor.Command(CM_DELETENEARESTLIGHT); }));
    EXPECT_TRUE(Advances([&] { L.Add("WallTex.bmp"); }));
    EXPECT_TRUE(Advances([&] { L.ReplaceTextureAt("InvSide.bmp", 1); }));
    EXPECT_TRUE(Advances([&] { L.DeleteTextureAt(1); }));
    int cube = AddCubeCopy(L, {1000, 0, 0});
    EXPECT_TRUE(Advances([&] { L.JoinSides(0, 0, cube, 2, 0); }));
    EXPECT_TRUE(Advances([&] { L.FitTexture(0, 1, 0, 4); }));
    EXPECT_TRUE(Advances([&] { L.Unlink(0, 0); }));
    EXPECT_TRUE(Advances([&] { L.DeleteSegment(cube); }));

    // Selection and camera changes, refusals and lookups leave it.
    EXPECT_FALSE(Advances([&] { Editor.Command(CM_NEXTPOINT); }));
    EXPECT_FALSE(Advances([&] { Cam.Move(CAM_FORWARD, 10); }));
    EXPECT_FALSE(Advances([&] { Editor.LeftClick(320, 240); }));
    EXPECT_FALSE(Advances([&] { L.FindSegment({0, 0, 0}); }));
    EXPECT_FALSE(Advances([&] { (void)L.Serialize(); }));
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
    EXPECT_FALSE(Doc.Modified());
    EXPECT_EQ(Doc.FileName(), file);

    // A failed save keeps the name and the modified state.
    L.MovePoint(1, 0, 0);
    EXPECT_FALSE(Doc.SaveAs((dir / "missing" / "b.ORVLevel").string()));
    EXPECT_EQ(Doc.FileName(), file);
    EXPECT_TRUE(Doc.Modified());
    EXPECT_TRUE(Doc.Save());
    EXPECT_FALSE(Doc.Modified());

    // Opening advances the revision and leaves an unmodified document; a
    // failed open changes nothing.
    uint64_t before = Doc.Revision();
    L.MovePoint(1, 0, 0);
    EXPECT_FALSE(Doc.Open((dir / "none.ORVLevel").string()));
    EXPECT_TRUE(Doc.Modified());
    EXPECT_EQ(Doc.FileName(), file);
    ASSERT_TRUE(Doc.Open(file));
    EXPECT_GT(Doc.Revision(), before);
    EXPECT_FALSE(Doc.Modified());
}
