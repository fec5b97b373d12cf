#include <gtest/gtest.h>

#include "graphics/trimesh.h"
#include "platform/tests/testplatform.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

namespace {

// Big-endian IFF pieces of a LightWave object file.
void Be16(Bytes& b, uint16_t v)
{
    b.push_back(uint8_t(v >> 8));
    b.push_back(uint8_t(v));
}

void Be32(Bytes& b, uint32_t v)
{
    Be16(b, uint16_t(v >> 16));
    Be16(b, uint16_t(v));
}

void Text(Bytes& b, const std::string& s)
{
    b.insert(b.end(), s.begin(), s.end());
}

Bytes Chunk(const char* id, const Bytes& body, uint32_t statedSize = UINT32_MAX)
{
    Bytes b;
    Text(b, id);
    Be32(b, statedSize == UINT32_MAX ? uint32_t(body.size()) : statedSize);
    b.insert(b.end(), body.begin(), body.end());
    return b;
}

Bytes Lwob(const std::vector<Bytes>& chunks)
{
    Bytes b;
    Text(b, "FORM");
    Be32(b, 0);
    Text(b, "LWOB");
    for (const Bytes& c : chunks)
        b.insert(b.end(), c.begin(), c.end());
    return b;
}

Bytes PointData(const std::vector<float>& xyz)
{
    Bytes b;
    for (float f : xyz) {
        uint32_t bits;
        std::memcpy(&bits, &f, 4);
        Be32(b, bits);
    }
    return b;
}

Bytes Pnts(const std::vector<float>& xyz)
{
    return Chunk("PNTS", PointData(xyz));
}

Bytes Srfs(const std::vector<std::string>& names)
{
    Bytes b;
    for (const std::string& n : names) {
        Text(b, n);
        b.push_back(0);
        if (b.size() % 2)
            b.push_back(0);
    }
    return Chunk("SRFS", b);
}

// A surface as modelling programs write it: the colour, then shading values.
Bytes Surf(const std::string& name, uint8_t r, uint8_t g, uint8_t bl, bool withColour = true)
{
    Bytes b;
    Text(b, name);
    b.push_back(0);
    if (b.size() % 2)
        b.push_back(0);
    if (withColour) {
        Text(b, "COLR");
        Be16(b, 4);
        b.insert(b.end(), {r, g, bl, 0});
    }
    for (const char* id : {"FLAG", "DIFF", "LUMI"}) {
        Text(b, id);
        Be16(b, 2);
        Be16(b, 0);
    }
    return Chunk("SURF", b);
}

Bytes Pols(const std::vector<int>& words)
{
    Bytes b;
    for (int w : words)
        Be16(b, uint16_t(w));
    return Chunk("POLS", b);
}

std::vector<TRIANGLE> Triangles(const TRIMESH& m)
{
    std::vector<TRIANGLE> out;
    for (int i = 0; i < TRIMESH_MAX_TRIANGLES; ++i)
        if (m.triangles[i])
            out.push_back(*m.triangles[i]);
    return out;
}

std::vector<int> Indices(const TRIANGLE& t)
{
    return {t.vertex[0], t.vertex[1], t.vertex[2]};
}

class TrimeshTest : public PlatformTest
{
protected:
    TEMPDIR Dir;
};

} // namespace

TEST_F(TrimeshTest, LoadsScaledPointsColoursAndPolygonFans)
{
    std::string file = Dir.Write("a.lwo", Lwob({
        Pnts({1, 2, 3, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}),
        Srfs({"Hull", "Glass", "Spare"}),
        Surf("Glass", 255, 0, 51),
        Surf("Nobody", 1, 2, 3),
        Surf("Hull", 0, 128, 255),
        Pols({
            4, 0, 1, 2, 3, 1,                 // quad: a fan of two
            3, 1, 2, 4, -2, 1, 3, 4, 3, 2, 1, // detail polygon after it is skipped
            3, 4, 3, 2, 2,                    // read after the detail
            2, 0, 1, 1,                       // a line: no triangle
            3, 0, 1, 1000, 1,                 // beyond the table
            3, 0, 40000, 1, 1,                // negative as a signed number
        }),
    }));
    TRIMESH m(file.c_str(), 5.0f);

    EXPECT_TRUE(P().Messages.empty());
    EXPECT_EQ(P().Beeps, 0);
    EXPECT_STREQ(m.name, file.c_str());
    EXPECT_FALSE(m.hasList);
    EXPECT_TRUE(m.dirty);
    ASSERT_EQ(m.VertexCount(), 5);
    EXPECT_EQ(*m.vertices[0], VECTOR3D(5, 10, 15));
    EXPECT_EQ(*m.vertices[4], VECTOR3D(0, 0, 5));

    // SRFS numbering follows the names in the file, not the SURF order.
    ASSERT_TRUE(m.surfaces[0] && m.surfaces[1]);
    EXPECT_FLOAT_EQ(m.surfaces[0]->y, 128 / 255.0f);
    EXPECT_FLOAT_EQ(m.surfaces[1]->x, 1.0f);
    EXPECT_FLOAT_EQ(m.surfaces[1]->z, 0.2f);
    EXPECT_EQ(m.surfaces[2], nullptr);
    EXPECT_EQ(m.SurfaceCount(), 2);

    std::vector<TRIANGLE> t = Triangles(m);
    ASSERT_EQ(t.size(), 4u);
    EXPECT_EQ(Indices(t[0]), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(Indices(t[1]), (std::vector<int>{0, 2, 3}));
    EXPECT_EQ(t[0].surface, 0);
    EXPECT_EQ(Indices(t[2]), (std::vector<int>{1, 2, 4}));
    EXPECT_EQ(t[2].surface, 1);
    EXPECT_EQ(Indices(t[3]), (std::vector<int>{4, 3, 2}));
    EXPECT_EQ(t[3].surface, 1);

    // (0,0,0), (5,0,0), (0,0,5): the normal of Cross(a - b, a - c).
    EXPECT_EQ(t[2].normal, VECTOR3D(0, -1, 0));
}

TEST_F(TrimeshTest, BrokenFilesAreReportedAndLeaveWhatWasRead)
{
    std::string missing = (Dir.Path / "none.lwo").string();
    try {
        TRIMESH m(missing.c_str(), 1.0f);
        FAIL() << "a missing mesh must end the program";
    } catch (const FATALEXIT& e) {
        EXPECT_EQ(e.Status, 0);
    }
    ASSERT_EQ(P().Messages.size(), 1u);
    EXPECT_EQ(P().Messages[0].Text, missing + " nem található!");
    EXPECT_EQ(P().Messages[0].Caption, "FATAL!");

    struct CASE
    {
        Bytes File;
        const char* Message; // null: none
        int Beeps;
        int Vertices, Surfaces, Triangles;
    };
    Bytes points = Pnts({0, 0, 0, 1, 0, 0, 0, 1, 0});
    Bytes notLwob = Lwob({points});
    std::memcpy(notLwob.data() + 8, "LWO2", 4);
    const CASE cases[] = {
        {{'F', 'O'}, "FORM chunk not found!", 0, 0, 0, 0},
        {Bytes{'R', 'I', 'F', 'F', 0, 0, 0, 0, 'L', 'W', 'O', 'B'}, "FORM chunk not found!", 0, 0, 0, 0},
        {notLwob, "LWOB chunk not found!", 0, 0, 0, 0},
        {Lwob({Srfs({"A"}), Pols({3, 0, 1, 2, 1})}), nullptr, 1, 0, 0, 0},
        {Lwob({points, Pols({3, 0, 1, 2, 1})}), nullptr, 1, 3, 0, 0},
        {Lwob({points, Srfs({"A"}), Surf("A", 9, 9, 9)}), "POLS chunk not found!", 1, 3, 1, 0},
        // A chunk of size 0 counts as missing, without a beep of its own; the
        // beep is the absent SURF's.
        {Lwob({points, Srfs({"A"}), Pols({})}), "POLS chunk not found!", 1, 3, 0, 0},
    };
    for (const CASE& c : cases) {
        P().Reset();
        std::string file = Dir.Write("broken.lwo", c.File);
        TRIMESH m(file.c_str(), 1.0f);
        SCOPED_TRACE(c.Message ? c.Message : "beep only");
        if (c.Message) {
            ASSERT_EQ(P().Messages.size(), 1u);
            EXPECT_EQ(P().Messages[0].Text, c.Message);
            EXPECT_EQ(P().Messages[0].Caption, file);
            EXPECT_EQ(P().Messages[0].Icon, MSGICON_STOP);
        } else {
            EXPECT_TRUE(P().Messages.empty());
        }
        EXPECT_EQ(P().Beeps, c.Beeps);
        EXPECT_EQ(m.VertexCount(), c.Vertices);
        EXPECT_EQ(m.SurfaceCount(), c.Surfaces);
        EXPECT_EQ(m.TriangleCount(), c.Triangles);
        EXPECT_STREQ(m.name, ""); // only a complete load names the mesh
    }
}

TEST_F(TrimeshTest, OverlongSizesAndOddSurfacesStayInBounds)
{
    // PNTS claims 100 points but the file ends after two.
    Bytes shortPoints = Chunk("PNTS", PointData({1, 1, 1, 2, 2, 2}), 1200);
    {
        TRIMESH m(Dir.Write("p.lwo", Lwob({shortPoints})).c_str(), 1.0f);
        EXPECT_EQ(m.VertexCount(), 2);
    }

    // 150 surface names: only the first 100 are taken. A surface without
    // COLR is white, as is a triangle whose surface is 0 or past the table.
    std::vector<std::string> names;
    for (int i = 0; i < 150; ++i)
        names.push_back("S" + std::to_string(i));
    std::vector<int> words;
    std::vector<float> xyz;
    const int ring = 400; // more corners than any fixed polygon buffer
    words.push_back(ring);
    for (int i = 0; i < ring; ++i) {
        xyz.insert(xyz.end(), {std::cos(i * 0.0157f), std::sin(i * 0.0157f), 0});
        words.push_back(i);
    }
    words.push_back(3);
    words.insert(words.end(), {3, 0, 1, 2, 0});   // surface 0
    words.insert(words.end(), {3, 0, 1, 2, 250}); // past the table
    words.insert(words.end(), {500, 0, 1, 2});    // runs past the chunk
    Bytes unterminated = Chunk("SURF", Bytes{'S', '1'});
    std::string file = Dir.Write("s.lwo", Lwob({Pnts(xyz), Srfs(names), Surf("S2", 0, 0, 0, false),
                                                Surf("S120", 10, 10, 10), Surf("S0", 255, 0, 0), unterminated,
                                                Pols(words)}));
    TRIMESH m(file.c_str(), 1.0f);
    EXPECT_TRUE(P().Messages.empty());
    EXPECT_EQ(m.VertexCount(), ring);
    EXPECT_EQ(m.TriangleCount(), ring - 2 + 2);
    EXPECT_EQ(m.SurfaceCount(), 3); // S0, S1 (no sub-chunks: white), S2 (no COLR: white)
    EXPECT_EQ(m.SurfaceColour(0), VECTOR3D(1, 0, 0));
    EXPECT_EQ(m.SurfaceColour(1), VECTOR3D(1, 1, 1));
    EXPECT_EQ(m.SurfaceColour(2), VECTOR3D(1, 1, 1));
    EXPECT_EQ(m.SurfaceColour(-1), VECTOR3D(1, 1, 1));
    EXPECT_EQ(m.SurfaceColour(249), VECTOR3D(1, 1, 1));
}

TEST_F(TrimeshTest, TablesDropWhatDoesNotFit)
{
    TRIMESH m;
    for (int i = 0; i < TRIMESH_MAX_VERTICES + 5; ++i)
        m.AddVertex(float(i), 0, 0);
    EXPECT_EQ(m.VertexCount(), TRIMESH_MAX_VERTICES);
    EXPECT_EQ(m.vertices[TRIMESH_MAX_VERTICES - 1]->x, float(TRIMESH_MAX_VERTICES - 1));

    // Collinear corners give the fallback normal (1, 0, 0).
    TRIANGLE t;
    t.vertex[0] = 0;
    t.vertex[1] = 1;
    t.vertex[2] = 2;
    m.AddTriangle(t);
    ASSERT_EQ(m.TriangleCount(), 1);
    EXPECT_EQ(m.triangles[0]->normal, VECTOR3D(1, 0, 0));

    // A freed vertex slot refuses triangles and is the next one filled.
    delete m.vertices[7];
    m.vertices[7] = nullptr;
    t.vertex[2] = 7;
    m.AddTriangle(t);
    EXPECT_EQ(m.TriangleCount(), 1);
    m.AddVertex(-1, -1, -1);
    EXPECT_EQ(m.vertices[7]->x, -1.0f);

    t.vertex[2] = 3;
    for (int i = 0; i < TRIMESH_MAX_TRIANGLES + 5; ++i)
        m.AddTriangle(t);
    EXPECT_EQ(m.TriangleCount(), TRIMESH_MAX_TRIANGLES);
}

TEST_F(TrimeshTest, BoundsAndRadii)
{
    TRIMESH empty;
    float b[6], outer, inner;
    empty.GetBounds(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &outer, &inner);
    EXPECT_EQ(b[0], 1e10f);
    EXPECT_EQ(b[1], -1e10f);
    EXPECT_EQ(inner, 1e10f);
    EXPECT_NEAR(outer, 1.7320508e10f, 1e4f);

    TRIMESH m;
    m.AddVertex(-2, 1, 3);
    m.AddVertex(4, 5, -0.5f);
    m.GetBounds(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &outer, &inner);
    EXPECT_EQ(std::vector<float>(b, b + 6), (std::vector<float>{-2, 4, 1, 5, -0.5f, 3}));
    EXPECT_FLOAT_EQ(inner, 0.5f);
    EXPECT_FLOAT_EQ(outer, std::sqrt(16.0f + 25.0f + 9.0f));
}
