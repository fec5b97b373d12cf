// The level's drawing: doors, the selection and its blink, markers and
// labels, objects, the view's frame, and the batched drawing against the
// plain one.
#include "rendertesting.h"

#include "orvlevel/tests/leveltesting.h"

#include "graphics/texture.h"
#include "math/random.h"
#include "orvlevel/level.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/gltexture.h"
#include "render/view.h"
#include "things/effects.h"
#include "things/pickup.h"
#include "things/spaceship.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

class DrawLevelTest : public RenderTest
{
protected:
    std::unique_ptr<ORVLEVEL> L;
    std::unique_ptr<ORVERENDER> View;

    void SetUp() override
    {
        RenderTest::SetUp();
        if (IsSkipped())
            return;
        L = std::make_unique<ORVLEVEL>();
        InvalidateDisplayList(*L);
        // The view's OpenGL state; the frame itself is set per test.
        View = std::make_unique<ORVERENDER>(nullptr, nullptr);
        View->Level = L.get();
        View->SetClientSize(TEST_WIDTH, TEST_HEIGHT);
    }
    void TearDown() override
    {
        View.reset();
        L.reset();
        RenderTest::TearDown();
    }

    std::vector<FBITEM> Draw(bool untextured = true, bool markers = true, THING* viewer = nullptr)
    {
        return Feedback([&] { DrawLevel(*L, untextured, markers, viewer, false, nullptr); });
    }
    // Every side but `keep` of segment 0 loses its texture, so that drawing
    // without untextured sides shows that one alone.
    void OnlySide(int keep)
    {
        for (int i = 0; i < 6; ++i)
            if (i != keep)
                L->Segments[0]->Sides[i].Texture = -1;
    }
};

int Lines(const std::vector<FBITEM>& items)
{
    return int(std::count_if(items.begin(), items.end(),
                             [](const FBITEM& i) { return i.Token == GL_LINE_TOKEN; }));
}

} // namespace

TEST_F(DrawLevelTest, DoorsSlideTwoCornersAndCarryTheirTexture)
{
    FlatView();
    OnlySide(4); // z = +100: corners (-100, 100), (100, 100), (100, -100), (-100, -100)
    SIDE& door = L->Segments[0]->Sides[4];
    std::vector<FBITEM> wall = Polygons(Draw(false, false));
    door.WallType = WALL_DOOR; // closed: drawn as the wall
    auto xs = [](const std::vector<FBITEM>& items) {
        std::vector<float> out;
        for (const FBITEM& p : items)
            for (const FBVERTEX& v : p.Vertices)
                out.insert(out.end(), {v.X, v.S});
        return out;
    };
    EXPECT_EQ(xs(Polygons(Draw(false, false))), xs(wall));

    // Half open from edge 0: corners 1 and 2 halfway toward 0 and 3; the
    // fixed corners take the pairs of the edge's midpoint. Then from edge 3.
    door.Door.State = DOOR_OPENING;
    door.Door.Opening = 0.5f;
    struct CORNER { float X, Y, S, T; };
    const struct { int32_t Edge; CORNER Corners[4]; } cases[2] = {
        {0, {{220, 340, 0.5f, 1}, {320, 340, 0, 1}, {320, 140, 0, 0}, {220, 140, 0.5f, 0}}},
        {3, {{220, 240, 1, 1}, {420, 240, 0, 1}, {420, 140, 0, 0.5f}, {220, 140, 1, 0.5f}}}};
    for (const auto& c : cases)
    {
        door.Door.SlideEdge = c.Edge;
        std::vector<FBITEM> open = Polygons(Draw(false, false));
        for (const CORNER& k : c.Corners)
        {
            const FBVERTEX* v = At(open, k.X, k.Y);
            ASSERT_NE(v, nullptr) << c.Edge << ": " << k.X << "," << k.Y;
            EXPECT_TRUE(v->S == k.S && v->T == k.T) << c.Edge << ": " << k.X << "," << k.Y;
        }
        EXPECT_EQ(At(open, 420, 340), nullptr);
    }
}

TEST_F(DrawLevelTest, SelectedSideBlinksAndItsCornersAreLabelled)
{
    FlatView();
    PROBEFONT probe;
    L->CurrentSegment = 0, L->CurrentSide = 4, L->CurrentPoint = 1; // (100, 100, 100), pair (0, 1)
    OnlySide(4);
    auto colourOfSide = [&](const std::vector<FBITEM>& items) { return Polygons(items).at(0).Vertices[0].R; };

    P().Now = 5000;
    std::vector<FBITEM> first = Draw(false, false); // an unarmed timer counts as elapsed
    EXPECT_FLOAT_EQ(colourOfSide(first), 0.5f);
    EXPECT_EQ(PassedText(first), "023[100.0,100.0,100.0][0.0,1.0]");
    // The cross: four different diagonals through the corner, 5 units each
    // way along every axis.
    ASSERT_EQ(Lines(first), 4);
    std::vector<float> depths;
    for (const FBITEM& line : first)
        if (line.Token == GL_LINE_TOKEN)
        {
            const FBVERTEX &a = line.Vertices[0], &b = line.Vertices[1];
            EXPECT_LT(std::fabs(a.X + b.X - 840) + std::fabs(a.Y + b.Y - 680) + std::fabs(std::fabs(a.X - b.X) - 10) + std::fabs(std::fabs(a.Y - b.Y) - 10), 1e-3f);
            depths.push_back((a.Z + b.Z) / 2);
            EXPECT_NE(a.Z, b.Z);
        }
    EXPECT_LT(*std::max_element(depths.begin(), depths.end()) - *std::min_element(depths.begin(), depths.end()), 1e-6f);

    // 500 ms are not more than 500 ms; it flips at most once per 500 ms.
    for (auto [now, colour] : {std::pair{5500u, 0.5f}, {5501u, 1.0f}, {5600u, 1.0f}, {6002u, 0.5f}})
    {
        P().Now = now;
        EXPECT_EQ(colourOfSide(Draw(false, false)), colour) << now;
    }

    // Nothing selected: no cross, no labels, no dimmed side.
    L->CurrentSegment = -1;
    std::vector<FBITEM> none = Draw(false, false);
    EXPECT_TRUE(Lines(none) == 0 && PassedText(none).empty() && colourOfSide(none) == 1.0f);
}

TEST_F(DrawLevelTest, LightsAndStartPointsHaveBoxesAndLabels)
{
    FlatView();
    PROBEFONT probe;
    L->Add(STATICLIGHT{{10, 20, 30}, {1, 0.5f, 0.25f}, 1234.6f});
    L->Add(STATICLIGHT{{-10, 0, 0}, {1, 1, 1}, 10000.0f});
    L->Add(SPECPOINT{{0, 50, 0}, 0});
    L->Add(SPECPOINT{{0, -50, 0}, 1}); // another kind: a box without a label
    OnlySide(4);
    std::vector<FBITEM> items = Draw(false, true);
    // After a textured side the boxes are drawn untextured.
    GLint bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);
    EXPECT_EQ(PassedText(items), "123510000SP start");
    EXPECT_EQ(Lines(items), 4 * 12);
    // The first light's box spans its position +-5, in its colour.
    const FBVERTEX *corner = At(items, 320 + 15, 240 + 25), *start = At(items, 320 - 5, 240 + 45);
    ASSERT_TRUE(corner && start);
    EXPECT_TRUE(corner->G == 0.5f && start->G == 1.0f);
}

TEST_F(DrawLevelTest, ObjectsAreDrawnUnlessDeadOrViewing)
{
    FlatView();
    OnlySide(-1);
    auto* item = new P_SHIELD(VECTOR3D(0, 0, 0), VECTOR3D(1, 0, 0), VECTOR3D(0, 1, 0), VECTOR3D(0, 0, 1));
    ASSERT_GE(L->AddThing(item), 0);
    size_t shieldPolygons = Polygons(Draw(false, false)).size();
    EXPECT_GT(shieldPolygons, 0u);
    item->dead = true;
    EXPECT_EQ(Polygons(Draw(false, false)).size(), 0u);
    glMatrixMode(GL_MODELVIEW);

    // The viewing ship is not drawn; its cockpit is, over the view.
    auto* ship = new SPACESHIP();
    ASSERT_GE(L->AddThing(ship), 0);
    DrawingView.Width = TEST_WIDTH, DrawingView.Height = TEST_HEIGHT;
    PROBEFONT probe;
    std::vector<FBITEM> cockpit = Draw(false, false, ship);
    DrawingView = FRAMEVIEW();
    EXPECT_EQ(PassedText(cockpit).substr(0, 5), "100.0");
    EXPECT_EQ(Polygons(cockpit).size(), 4u); // the two bars, two triangles each
}

TEST_F(DrawLevelTest, HighlightTintsASegmentAndItsNeighbours)
{
    FlatView();
    L->CurrentSegment = 0;
    L->CurrentSide = 4;
    L->NewSegment(); // segment 1, a neighbour of 0
    AddCubeCopy(*L, VECTOR3D(0, 0, -400)); // segment 2, no neighbour
    L->CurrentSegment = -1;
    // Every corner is tinted green (the segment), red (a neighbour) or left white.
    int green = 0, red = 0, white = 0, corners = 0;
    for (const FBITEM& p : Polygons(Feedback([&] { DrawLevel(*L, true, false, nullptr, true, L->Segments[0]); })))
        for (const FBVERTEX& v : p.Vertices)
        {
            green += v.R == 0.5f && v.G == 1 && v.B == 0.5f;
            red += v.R == 1 && v.G == 0.5f && v.B == 0.5f;
            white += v.R == 1 && v.G == 1 && v.B == 1;
        }
    for (const FBITEM& p : Polygons(Draw(true, false)))
        corners += int(p.Vertices.size());
    EXPECT_TRUE(green > 0 && red > 0 && white > 0 && green + red + white == corners);
}

TEST_F(DrawLevelTest, UninvalidatedListRecordsStaticSidesAndDrawsDoorsEachFrame)
{
    FlatView();
    L = std::make_unique<ORVLEVEL>(); // its list not invalidated
    View->Level = L.get();
    OnlySide(4); // a wall at window x 220 ... 420
    int32_t other = AddCubeCopy(*L, VECTOR3D(-220, 0, 0)); // its side 4 a door at x 0 ... 200
    for (int i = 0; i < 6; ++i)
        L->Segments[other]->Sides[i].Texture = i == 4 ? 0 : -1;
    L->Segments[other]->Sides[4].WallType = WALL_DOOR;
    // The lowest red of the wall's corners and of the door's.
    auto reds = [&] {
        float wall = 2, door = 2;
        for (const FBITEM& p : Polygons(Draw(false, false)))
            for (const FBVERTEX& v : p.Vertices)
                (v.X > 210 ? wall : door) = std::fmin(v.X > 210 ? wall : door, v.R);
        return std::pair(wall, door);
    };
    // The recording frame leaves doors out: they never enter the list.
    EXPECT_EQ(reds(), std::pair(1.0f, 2.0f));
    ASSERT_NE(L->DisplayList, 0u);
    EXPECT_TRUE(L->ListBuilt && glIsList(L->DisplayList));

    EXPECT_EQ(reds(), std::pair(1.0f, 1.0f));
    // Replayed: a changed wall does not show, a changed door does.
    for (int32_t s : {0, other})
        for (VECTOR3D& c : L->Segments[s]->Sides[4].Colours)
            c = VECTOR3D(0, 0, 0);
    EXPECT_EQ(reds(), std::pair(1.0f, 0.0f));

    // Invalidated: the list is gone and every side is drawn directly.
    uint32_t list = L->DisplayList;
    InvalidateDisplayList(*L);
    EXPECT_TRUE(!glIsList(list) && L->ListBuilt && L->DisplayList == 0u);
    EXPECT_EQ(reds(), std::pair(0.0f, 0.0f));

    // An OpenGL error pending when the list closes ends the program.
    L = std::make_unique<ORVLEVEL>();
    View->Level = L.get();
    glEnd(); // outside glBegin: an error waits
    EXPECT_THROW(DrawLevel(*L, true, true, nullptr, false, nullptr), FATALEXIT);
    EXPECT_EQ(P().Messages.size(), 1u);
    EXPECT_FALSE(L->ListBuilt);
    glDeleteLists(L->DisplayList, 1);
}

TEST_F(DrawLevelTest, MarkedSegmentsAreTintedAndStillBlink)
{
    FlatView();
    OnlySide(4);
    for (VECTOR3D& c : L->Segments[0]->Sides[4].Colours)
        c = VECTOR3D(0.4f, 0.6f, 0.8f);
    std::vector<uint8_t> marks(MAX_SEGMENTS, 0);
    auto colour = [&](int marked) {
        std::fill(marks.begin(), marks.end(), 0);
        marks[size_t(marked)] = 1;
        auto draw = [&] { DrawLevel(*L, false, false, nullptr, false, nullptr, marks.data()); };
        const FBVERTEX v = Polygons(Feedback(draw)).at(0).Vertices[0];
        return VECTOR3D(v.R, v.G, v.B);
    };
    // A quarter of the way to amber; other segments keep their colours.
    EXPECT_LT(Length(colour(0) - VECTOR3D(0.55f, 0.6f, 0.6f)), 1e-5f);
    EXPECT_LT(Length(colour(1) - VECTOR3D(0.4f, 0.6f, 0.8f)), 1e-5f);
    L->CurrentSegment = 0, L->CurrentSide = 4; // selected, the blink halves the tint
    EXPECT_LT(Length(colour(0) - VECTOR3D(0.275f, 0.3f, 0.3f)), 1e-5f);
}

TEST_F(DrawLevelTest, ViewDrawsTheDefaultLevelFromTheStartUpCamera)
{
    View->Update(); // the first update draws at once
    std::vector<uint8_t> pixels = Pixels();

    // Away from the axes the three walls fill the picture with their
    // texture: grey steel, not the white of their corner colours alone.
    EXPECT_TRUE(glIsTexture(L->Textures[0]->GLName));
    for (auto [x, y] : {std::pair(40, 40), std::pair(600, 40), std::pair(320, 460)})
    {
        RGB p = PixelAt(pixels, x, y);
        EXPECT_TRUE(p.R + p.G + p.B > 90 && p.R + p.G + p.B < 600 && std::abs(p.R - p.B) < 60) << x << "," << y;
    }
}

namespace {

// A level with what the drawing has to get right: joined segments with
// see-through openings, a half-open and an open door, a side without a
// texture, baked light colours, lights, start points, objects of every
// kind and a selection; beside it a block of unjoined cubes whose inner
// sides are all see-through.
void BuildBusyLevel(ORVLEVEL& L)
{
    L.CurrentSegment = 0, L.CurrentSide = 4;
    L.NewSegment(); // segment 1, toward +z
    L.CurrentSegment = 1, L.CurrentSide = 1;
    L.NewSegment(); // segment 2, toward +x
    SIDE& half = L.Segments[1]->Sides[3];
    half.WallType = WALL_DOOR;
    half.Door = {DOOR_RECORD_SIZE, DOOR_OPENING, 0.5f, 1, 1};
    SIDE& open = L.Segments[2]->Sides[0];
    open.WallType = WALL_DOOR;
    open.Door = {DOOR_RECORD_SIZE, DOOR_OPEN, 1.0f, 1, 3};
    L.Segments[0]->Sides[2].Texture = -1;
    L.Segments[0]->Sides[2].WallType = WALL_NORMAL;
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 3; ++y)
            for (int z = 0; z < 3; ++z)
            {
                int32_t s = AddCubeCopy(L, VECTOR3D(800 + 200 * x, 200 * y - 200, 200 * z - 200));
                for (int i = 0; i < 6; ++i)
                    L.Segments[s]->Sides[i].Texture = (x + y + z + i) % 3 ? -1 : 0;
            }
    L.Add(STATICLIGHT{{0, 50, 150}, {1, 0.8f, 0.6f}, 20000.0f});
    L.Add(STATICLIGHT{{300, 0, 300}, {0.3f, 0.6f, 1}, 8000.0f});
    L.CalculateLighting();
    L.Add(SPECPOINT{{-50, -50, 250}, 0});

    auto place = [&](THING* t, VECTOR3D p) {
        t->position = p;
        t->segment = L.FindSegment(p);
        L.AddThing(t);
    };
    place(new SPACESHIP(), VECTOR3D(0, 0, 200));
    place(new P_ENERGY(VECTOR3D(), VECTOR3D(1, 0, 0), VECTOR3D(0, 1, 0), VECTOR3D(0, 0, 1)), VECTOR3D(50, -30, 250));
    place(new P_TEMPEST(VECTOR3D(), VECTOR3D(1, 0, 0), VECTOR3D(0, 1, 0), VECTOR3D(0, 0, 1)), VECTOR3D(250, 0, 250));
    auto* shot = new LASERSHOT(false, VECTOR3D(-40, 20, 180));
    shot->level = 3;
    place(shot, shot->lastPoint);
    auto* boom = new EXPLOSION(1.0f, 25.0f, VECTOR3D(30, 30, 150));
    boom->radius = 15;
    place(boom, VECTOR3D());
    place(new SPARK(VECTOR3D(-30, -30, 120), 20.0f, 2.0f), VECTOR3D(-30, -30, 120));
    L.CurrentSegment = 1, L.CurrentSide = 2, L.CurrentPoint = 3;
}

struct FRAME
{
    std::vector<uint8_t> Pixels;
    GLint Bound;
    uint32_t Cache;
    GLfloat Colour[4], Tex[4];
};

} // namespace

TEST_F(DrawLevelTest, BatchedDrawingGivesThePlainPixels)
{
    BuildBusyLevel(*L);
    auto frame = [&](bool batched) {
        SRand(5); // sparks draw random lines
        View->Batched = batched;
        View->Draw();
        FRAME f;
        f.Pixels = Pixels();
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &f.Bound);
        f.Cache = BoundTexture;
        glGetFloatv(GL_CURRENT_COLOR, f.Colour);
        glGetFloatv(GL_CURRENT_TEXTURE_COORDS, f.Tex);
        return f;
    };
    std::vector<uint8_t> marks(MAX_SEGMENTS, 0);
    marks[1] = marks[5] = 1; // tinted in both drawings alike
    View->Marked = marks.data();
    auto same = [](const FRAME& a, const FRAME& b) {
        EXPECT_TRUE(a.Pixels == b.Pixels);
        EXPECT_TRUE(a.Bound == b.Bound && a.Cache == b.Cache);
        EXPECT_TRUE(std::equal(a.Colour, a.Colour + 4, b.Colour) && std::equal(a.Tex, a.Tex + 4, b.Tex));
    };

    // The start-up camera, one close to a corner (sides cut by the near
    // plane), then random ones around and inside the block.
    std::vector<CAMERA> cameras(2);
    cameras[1].Position = VECTOR3D(90, 90, 290);
    cameras[1].Move(CAM_LOOKUP, 0.5f);
    uint32_t seed = 77;
    auto random = [&](float lo, float hi) {
        seed = seed * 1664525u + 1013904223u;
        return lo + (hi - lo) * float(seed >> 8) / 16777216.0f;
    };
    for (int i = 0; i < 24; ++i)
    {
        CAMERA c;
        c.Position = VECTOR3D(random(-500, 2200), random(-600, 600), random(-600, 900));
        for (int op = CAM_TURNLEFT; op <= CAM_ROLLRIGHTDOWN; op += 2)
            c.Move(op, random(-3.1f, 3.1f));
        cameras.push_back(c);
    }
    for (size_t i = 0; i < cameras.size(); ++i)
    {
        SCOPED_TRACE("camera " + std::to_string(i));
        View->Camera = cameras[i];
        if (i == 5)
            P().Now += 501; // the other half of the blink
        FRAME a = frame(i % 2 == 0);
        same(a, frame(i % 2 == 1));
    }

    View->Camera = cameras[1];
    const FRAME marked = frame(false);
    View->Marked = nullptr;
    EXPECT_FALSE(frame(false).Pixels == marked.Pixels); // the view hands its marks on

    // Right after a texture upload the cache and OpenGL disagree about the
    // bound texture; the batched drawing must show that frame as the plain
    // one does.
    View->Camera = cameras[0];
    L->Add("WallTex.bmp");
    FRAME plain = frame(false);
    L->Add("WallTex.bmp");
    same(plain, frame(true));
}

TEST_F(DrawLevelTest, BlinkFrameClippedToTheSelectedSideEqualsAWholeFrame)
{
    L->CurrentSegment = 0, L->CurrentSide = 2, L->CurrentPoint = 1;
    View->Draw(); // blink on
    P().Now += 501;
    View->Draw(); // blink off, the whole frame
    const std::vector<uint8_t> whole = Pixels();
    P().Now += 501;
    View->Draw(); // blink on again
    P().Now += 501;
    ASSERT_TRUE(View->SelectedSideBounds(*L, View->ClipX, View->ClipY, View->ClipWidth, View->ClipHeight));
    EXPECT_LT(View->ClipWidth * View->ClipHeight, TEST_WIDTH * TEST_HEIGHT * 3 / 4);
    View->Draw(); // blink off, only the side's part
    View->ClipWidth = 0;
    EXPECT_TRUE(Pixels() == whole && !glIsEnabled(GL_SCISSOR_TEST));

    // Behind the camera there are no bounds to trust.
    View->Camera.Position = {0, 0, 0};
    EXPECT_FALSE(View->SelectedSideBounds(*L, View->ClipX, View->ClipY, View->ClipWidth, View->ClipHeight));
}
