#include "editor/controller.h"

#include "platform/tests/testplatform.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <algorithm>

namespace {

class HistoryTest : public PlatformTest
{
protected:
    HistoryTest()
    {
        LoadThingMeshes();
        RegisterThingClasses();
    }
    ORVEDOCUMENT Doc;
    ORVLEVEL& L = Doc.Level();
    ORVEHISTORY& H = Doc.History;
    CAMERA Cam;
    ORVEDITOR Editor{Doc, Cam};

    // One user action, as the window runs it.
    bool Act(int id)
    {
        H.Begin();
        Editor.Command(id);
        return H.Checkpoint();
    }
};

} // namespace

TEST_F(HistoryTest, UndoAndRedoWalkBackAndForthThroughExactImages)
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

TEST_F(HistoryTest, UndoingADeletedShipLeavesNothingBehind)
{
    Cam.Position = {10, 0, 0};
    EXPECT_TRUE(Act(CM_ENEMYSHIP));
    const std::vector<uint8_t> withShip = L.Serialize();
    EXPECT_TRUE(Act(CM_DELETENEARESTTHING)); // the ship's explosion and drops arrive
    EXPECT_NE(L.Things[1], nullptr);

    EXPECT_TRUE(H.Undo());
    EXPECT_EQ(L.Serialize(), withShip);
    EXPECT_EQ(std::count_if(L.Things, L.Things + MAX_THINGS, [](THING* t) { return t; }), 1);
    EXPECT_EQ(L.Things[0]->Level, &L);
}

TEST_F(HistoryTest, MemoryStaysBoundedAndOpeningStartsAfresh)
{
    ORVEHISTORY small(L, L.Serialize().size() * 3);
    L.CurrentSegment = 0;
    for (int i = 0; i < 50; ++i)
    {
        small.Begin();
        L.CalculateLighting(); // every colour changes: a step as large as the level
        L.FullBrightness();
        L.MovePoint(1, 0, 0);
        EXPECT_TRUE(small.Checkpoint());
        EXPECT_LE(small.MemoryUsed(), L.Serialize().size() * 3);
    }
    EXPECT_TRUE(small.Steps() > 0u && small.Steps() < 50u);

    Act(CM_POINTZPLUS);
    ASSERT_TRUE(H.CanUndo());
    ASSERT_TRUE(Doc.SaveAs("history-test.ORVLevel"));
    EXPECT_TRUE(H.CanUndo()); // saving keeps the history
    ASSERT_TRUE(Doc.Open("history-test.ORVLevel"));
    EXPECT_FALSE(H.CanUndo());
    std::remove("history-test.ORVLevel");
}
