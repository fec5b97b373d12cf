// Block commands on a small level with something inside: after each one the
// level check finds no new problem (it looks at inward normals, links both
// ways and stray points), and one undo brings the level back byte for byte.
#include "editor/blocks.h"
#include "editor/controller.h"

#include "math/geometry.h"
#include "orvlevel/levelcheck.h"
#include "orvlevel/tests/leveltesting.h"
#include "platform/tests/testplatform.h"
#include "things/pickup.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <array>
#include <filesystem>
#include <functional>
#include <string>

namespace {

// The door's panel as it is drawn: its corners, the sliding ones moved by its
// opening, mirrored across `axis` about `centre` when asked.
std::vector<std::array<float, 3>> Panel(ORVLEVEL& L, int axis = -1, float centre = 0)
{
    std::vector<std::array<float, 3>> panel;
    for (int32_t s = 0; s < L.SegmentsEnd(); ++s)
        for (int i = 0; L.Segments[s] && i < 6; ++i)
            if (L.Segments[s]->Sides[i].WallType == WALL_DOOR)
            {
                const int e = L.DoorSlideEdge(s, i);
                const VECTOR3D offset = L.DoorOffset(s, i);
                const VECTOR3D* c = L.GetSideCorners(s, i);
                for (int k = 0; k < 4; ++k)
                {
                    VECTOR3D p = c[k] + (k == (e + 1) % 4 || k == (e + 2) % 4 ? offset : VECTOR3D());
                    std::array<float, 3> v{p.x, p.y, p.z};
                    if (axis >= 0)
                        v[size_t(axis)] = 2 * centre - v[size_t(axis)];
                    panel.push_back(v);
                }
            }
    std::sort(panel.begin(), panel.end());
    return panel;
}

class BlocksTest : public PlatformTest
{
public:
    BlocksTest()
    {
        LoadThingMeshes();
        RegisterThingClasses();
        // Segment 0, segment 1 on top of it with a light and a shield inside,
        // segment 2 beside it (+x) whose outer wall is a half-open door, the
        // start point in segment 0 and a second texture.
        Select(0, 0);
        L.NewSegment();
        Select(0, 1);
        L.NewSegment();
        SIDE& door = L.Segments[2]->Sides[4];
        door.WallType = WALL_DOOR;
        door.Door.SlideEdge = 1;
        door.Door.Opening = 0.5f;
        L.NewLight({0, 200, 0}, 255, 255, 255, 1000);
        HandToLevel(&L, new P_SHIELD({10, 250, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
        SPECPOINT start;
        L.Add(start);
        L.Add("InvSide.bmp");
        Doc.History.Reset();
    }
    ORVEDOCUMENT Doc;
    ORVLEVEL& L = Doc.Level();
    CAMERA Cam;
    ORVEDITOR Editor{Doc, Cam};

    void Select(int32_t segment, int32_t side) { L.CurrentSegment = segment, L.CurrentSide = side; }
    void Mark(std::initializer_list<int32_t> segments)
    {
        Doc.Marks.Clear();
        for (int32_t s : segments)
            Doc.Marks.Set(s, true);
    }
    void Copy(std::initializer_list<int32_t> segments, int32_t segment, int32_t side)
    {
        Mark(segments);
        Select(segment, side);
        ASSERT_TRUE(BlockCopy(Editor));
    }
    int Count(SEGMENT* const* t) { return Filled(t, MAX_SEGMENTS); }
};

} // namespace

TEST_F(BlocksTest, EachOperationKeepsTheLevelSoundAndIsOneUndoStep)
{
    struct ROW { std::string Name; std::function<void(BlocksTest&)> Prepare; std::function<bool(BlocksTest&)> Act;
                 bool Done; int Segments, Lights, Things; }; // the counts after, on 3, 1, 1
    auto paste = [](BlocksTest& t) { return BlockPaste(t.Editor); };
    auto copy = [](BlocksTest& t) { return BlockCopy(t.Editor); };
    auto erase = [](BlocksTest& t) { return BlockDelete(t.Editor); };
    auto spread = [](BlocksTest& t) { return BlockSpreadTexture(t.Editor); };
    auto all = [](BlocksTest& t) { BlockMarkAll(t.Editor); };
    auto mirror = [](int axis) { return [axis](BlocksTest& t) { return BlockMirror(t.Editor, axis); }; };
    auto below = [&](int shift) {
        return ROW{"paste below, shift " + std::to_string(shift),
                   [shift](BlocksTest& t) {
                       t.Copy({0, 1}, 1, 4); // the top of the column onto the bottom
                       t.Select(0, 2);
                       t.Editor.JoinShift = shift;
                   },
                   paste, true, 5, 2, 2};
    };
    const ROW rows[] = {
        below(0), below(1), below(2), below(3),
        {"paste onto a joined side", [](BlocksTest& t) { t.Copy({1}, 1, 0), t.Select(0, 0); }, paste, false, 3, 1, 1},
        {"paste with nothing copied", [](BlocksTest& t) { t.Select(0, 2); }, paste, false, 3, 1, 1},
        {"copy anchored outside the marks", [](BlocksTest& t) { t.Mark({1}), t.Select(0, 2); }, copy, false, 3, 1, 1},
        {"copy anchored on a side linked inside", [](BlocksTest& t) { t.Mark({0, 1}), t.Select(0, 0); }, copy, false, 3,
         1, 1},
        {"delete", [](BlocksTest& t) { t.Mark({2}); }, erase, true, 2, 1, 1},
        {"delete with nothing marked", [](BlocksTest&) {}, erase, false, 3, 1, 1},
        {"move, the joined segment stretching", [](BlocksTest& t) { t.Mark({1}); },
         [](BlocksTest& t) { return BlockMove(t.Editor, {30, 40, -20}); }, true, 3, 1, 1},
        {"rotate a quarter turn", all, [](BlocksTest& t) { return BlockRotate(t.Editor, 1, 90); }, true, 3, 1, 1},
        {"rotate 30 degrees", all, [](BlocksTest& t) { return BlockRotate(t.Editor, 2, 30); }, true, 3, 1, 1},
        {"mirror x", all, mirror(0), true, 3, 1, 1},
        {"mirror y", all, mirror(1), true, 3, 1, 1},
        {"mirror z", all, mirror(2), true, 3, 1, 1},
        {"spread a texture", [](BlocksTest& t) { t.L.Segments[0]->Sides[2].Texture = 1, t.Select(0, 2); }, spread, true,
         3, 1, 1},
        {"spread from an untextured side", [](BlocksTest& t) { t.Select(0, 0); }, spread, false, 3, 1, 1},
    };
    const size_t problems = CheckLevel(L).size();
    const std::vector<uint8_t> original = L.Serialize();
    for (const ROW& row : rows)
    {
        SCOPED_TRACE(row.Name);
        P().Reset();
        L.RestoreImage(original.data(), original.size());
        Doc.History.Reset();
        Doc.Marks.Clear();
        Editor.Clipboard = {};
        row.Prepare(*this);
        const std::vector<uint8_t> before = L.Serialize();
        // The whole level is mirrored about x = 100 (it spans -100 ... 300), y = 100 and z = 0.
        const int mirrored = row.Name.starts_with("mirror ") ? row.Name.back() - 'x' : -1;
        const auto panel = Panel(L, mirrored, mirrored == 2 ? 0 : 100);
        Doc.History.Reset();
        Doc.History.Begin();
        EXPECT_EQ(row.Act(*this), row.Done);
        EXPECT_EQ(Doc.History.Checkpoint(), row.Done);
        EXPECT_EQ(P().Beeps, row.Done ? 0 : 1);
        EXPECT_EQ(Count(L.Segments), row.Segments);
        EXPECT_EQ(Filled(L.Lights, MAX_LIGHTS), row.Lights);
        EXPECT_EQ(Filled(L.Things, MAX_THINGS), row.Things);
        if (mirrored >= 0)
        {
            EXPECT_EQ(Panel(L), panel);
        }
        EXPECT_EQ(CheckLevel(L).size(), problems) << (CheckLevel(L).empty() ? "" : CheckLevel(L).back().Text);
        if (!row.Done)
        {
            EXPECT_EQ(L.Serialize(), before);
            continue;
        }
        const std::vector<uint8_t> after = L.Serialize();
        EXPECT_TRUE(Doc.History.Undo());
        EXPECT_EQ(L.Serialize(), before);
        EXPECT_TRUE(Doc.History.Redo());
        EXPECT_EQ(L.Serialize(), after);
    }
}

TEST_F(BlocksTest, MarksFollowTheSegmentsAndBlockFilesPasteAsCopiesDo)
{
    // Shift + click marks the segment under the cursor and keeps the selection.
    Select(2, 3);
    Cam.Position = {0, 0, 0}, Cam.ViewDir = {0, 1, 0}, Cam.Up = {0, 0, 1}, Cam.Right = {1, 0, 0};
    EXPECT_TRUE(BlockMarkClicked(Editor, 320, 240));
    EXPECT_EQ(Doc.Marks.List(), std::vector<int32_t>{0});
    EXPECT_TRUE(L.CurrentSegment == 2 && L.CurrentSide == 3);

    // Pasted segments become the marked ones; undoing the paste drops them.
    Copy({0, 1}, 1, 4);
    Select(0, 2);
    Doc.History.Begin();
    ASSERT_TRUE(BlockPaste(Editor));
    Doc.History.Checkpoint();
    const std::vector<uint8_t> copied = L.Serialize();
    EXPECT_EQ(Doc.Marks.List(), (std::vector<int32_t>{3, 4}));
    Doc.History.Undo();
    EXPECT_EQ(Doc.Marks.Count(), 0);

    // Saved and loaded, the block pastes to the same bytes.
    TEMPDIR dir;
    const std::string file = (dir.Path / "column.ORVLevel").string();
    Copy({0, 1}, 1, 4);
    EXPECT_EQ(BlockSave(Editor, file), BLOCKFILE_DONE);
    Editor.Clipboard = {};
    EXPECT_EQ(BlockLoad(Editor, file), BLOCKFILE_DONE);
    Select(0, 2);
    ASSERT_TRUE(BlockPaste(Editor));
    EXPECT_EQ(L.Serialize(), copied);
    EXPECT_EQ(BlockLoad(Editor, (dir.Path / "none").string()), BLOCKFILE_FAILED);
}
