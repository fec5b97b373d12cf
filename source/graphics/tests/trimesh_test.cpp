#include <gtest/gtest.h>

#include "graphics/trimesh.h"
#include "platform/tests/testplatform.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

namespace {

// Big-endian IFF pieces of a LightWave object file.
void Be(Bytes& b, uint32_t v, int bytes = 4)
{
    while (bytes--)
        b.push_back(uint8_t(v >> 8 * bytes));
}

Bytes Chunk(const char* id, const Bytes& body, uint32_t statedSize = UINT32_MAX)
{
    Bytes b(id, id + 4);
    Be(b, statedSize == UINT32_MAX ? uint32_t(body.size()) : statedSize);
    b.insert(b.end(), body.begin(), body.end());
    return b;
}

Bytes Lwob(const std::vector<Bytes>& chunks)
{
    Bytes b{'F', 'O', 'R', 'M', 0, 0, 0, 0, 'L', 'W', 'O', 'B'};
    for (const Bytes& c : chunks)
        b.insert(b.end(), c.begin(), c.end());
    return b;
}

Bytes Pnts(const std::vector<float>& xyz, uint32_t statedSize = UINT32_MAX)
{
    Bytes b;
    for (float f : xyz)
        Be(b, std::bit_cast<uint32_t>(f));
    return Chunk("PNTS", b, statedSize);
}

// Names padded to even length.
Bytes Names(const std::vector<std::string>& names)
{
    Bytes b;
    for (const std::string& n : names) {
        b.insert(b.end(), n.begin(), n.end());
        b.resize(b.size() + 2 - n.size() % 2);
    }
    return b;
}

// A surface as modelling programs write it: the colour, then shading values.
Bytes Surf(const std::string& name, uint8_t r, uint8_t g, uint8_t bl, bool withColour = true)
{
    Bytes b = Names({name});
    if (withColour)
        b.insert(b.end(), {'C', 'O', 'L', 'R', 0, 4, r, g, bl, 0});
    for (const char* id : {"FLAG", "DIFF", "LUMI"})
        b.insert(b.end(), {uint8_t(id[0]), uint8_t(id[1]), uint8_t(id[2]), uint8_t(id[3]), 0, 2, 0, 0});
    return Chunk("SURF", b);
}

Bytes Pols(const std::vector<int>& words)
{
    Bytes b;
    for (int w : words)
        Be(b, uint16_t(w), 2);
    return Chunk("POLS", b);
}

// Each triangle: its corners and surface.
std::vector<std::vector<int>> Triangles(const TRIMESH& m)
{
    std::vector<std::vector<int>> out;
    for (int i = 0; i < TRIMESH_MAX_TRIANGLES; ++i)
        if (const TRIANGLE* t = m.triangles[i])
            out.push_back({t->vertex[0], t->vertex[1], t->vertex[2], t->surface});
    return out;
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
        Chunk("SRFS", Names({"Hull", "Glass", "Spare"})),
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

    EXPECT_TRUE(P().Messages.empty() && P().Beeps == 0);
    EXPECT_STREQ(m.name, file.c_str());
    ASSERT_EQ(m.VertexCount(), 5);
    EXPECT_EQ(*m.vertices[0], VECTOR3D(5, 10, 15));
    EXPECT_EQ(*m.vertices[4], VECTOR3D(0, 0, 5));
    // SRFS numbering follows the names in the file, not the SURF order.
    EXPECT_EQ(m.SurfaceCount(), 2);
    EXPECT_LT(Length(m.SurfaceColour(0) - VECTOR3D(0, 128 / 255.0f, 1)) + Length(m.SurfaceColour(1) - VECTOR3D(1, 0, 0.2f)), 1e-6f);
    EXPECT_EQ(Triangles(m), (std::vector<std::vector<int>>{{0, 1, 2, 0}, {0, 2, 3, 0}, {1, 2, 4, 1}, {4, 3, 2, 1}}));
    // (0,0,0), (5,0,0), (0,0,5): the normal of Cross(a - b, a - c).
    EXPECT_EQ(m.triangles[2]->normal, VECTOR3D(0, -1, 0));
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
    EXPECT_EQ(P().Messages[0].Text + P().Messages[0].Caption, missing + " nem található!FATAL!");

    struct CASE { Bytes File; const char* Message; int Beeps, Vertices, Surfaces, Triangles; };
    Bytes points = Pnts({0, 0, 0, 1, 0, 0, 0, 1, 0});
    Bytes notLwob = Lwob({points});
    std::memcpy(notLwob.data() + 8, "LWO2", 4);
    const CASE cases[] = {
        {{'F', 'O'}, "FORM chunk not found!", 0, 0, 0, 0},
        {Bytes{'R', 'I', 'F', 'F', 0, 0, 0, 0, 'L', 'W', 'O', 'B'}, "FORM chunk not found!", 0, 0, 0, 0},
        {notLwob, "LWOB chunk not found!", 0, 0, 0, 0},
        {Lwob({Chunk("SRFS", Names({"A"})), Pols({3, 0, 1, 2, 1})}), nullptr, 1, 0, 0, 0},
        {Lwob({points, Pols({3, 0, 1, 2, 1})}), nullptr, 1, 3, 0, 0},
        {Lwob({points, Chunk("SRFS", Names({"A"})), Surf("A", 9, 9, 9)}), "POLS chunk not found!", 1, 3, 1, 0},
        // A chunk of size 0 counts as missing, without a beep of its own; the
        // beep is the absent SURF's.
        {Lwob({points, Chunk("SRFS", Names({"A"})), Pols({})}), "POLS chunk not found!", 1, 3, 0, 0},
    };
    for (const CASE& c : cases) {
        P().Reset();
        std::string file = Dir.Write("broken.lwo", c.File);
        TRIMESH m(file.c_str(), 1.0f);
        SCOPED_TRACE(c.Message ? c.Message : "beep only");
        EXPECT_EQ(P().Messages, (c.Message ? MESSAGES{{c.Message, file, MSGICON_STOP}} : MESSAGES{}));
        EXPECT_EQ((std::vector{P().Beeps, m.VertexCount(), m.SurfaceCount(), m.TriangleCount()}),
                  (std::vector{c.Beeps, c.Vertices, c.Surfaces, c.Triangles}));
        EXPECT_STREQ(m.name, ""); // only a complete load names the mesh
    }
}

TEST_F(TrimeshTest, OverlongSizesAndOddSurfacesStayInBounds)
{
    // PNTS claims 100 points but the file ends after two.
    EXPECT_EQ(TRIMESH(Dir.Write("p.lwo", Lwob({Pnts({1, 1, 1, 2, 2, 2}, 1200)})).c_str()).VertexCount(), 2);

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
    std::string file = Dir.Write("s.lwo", Lwob({Pnts(xyz), Chunk("SRFS", Names(names)), Surf("S2", 0, 0, 0, false),
                                                Surf("S120", 10, 10, 10), Surf("S0", 255, 0, 0), unterminated,
                                                Pols(words)}));
    TRIMESH m(file.c_str(), 1.0f);
    // S0, S1 (no sub-chunks: white), S2 (no COLR: white).
    EXPECT_TRUE(P().Messages.empty() && m.VertexCount() == ring && m.TriangleCount() == ring - 2 + 2 && m.SurfaceCount() == 3);
    EXPECT_EQ(m.SurfaceColour(0), VECTOR3D(1, 0, 0));
    for (int white : {1, 2, -1, 249})
        EXPECT_EQ(m.SurfaceColour(white), VECTOR3D(1, 1, 1));
}

TEST_F(TrimeshTest, TablesDropWhatDoesNotFitAndBoundsSpanTheVertices)
{
    TRIMESH m;
    for (int i = 0; i < TRIMESH_MAX_VERTICES + 5; ++i)
        m.AddVertex(float(i), 0, 0);
    EXPECT_EQ(m.VertexCount(), TRIMESH_MAX_VERTICES);
    EXPECT_EQ(m.vertices[TRIMESH_MAX_VERTICES - 1]->x, float(TRIMESH_MAX_VERTICES - 1));
    // A freed vertex slot refuses triangles and is the next one filled.
    delete m.vertices[7];
    m.vertices[7] = nullptr;
    m.AddTriangle({{0, 1, 7}, {}});
    m.AddVertex(-1, -1, -1);
    EXPECT_TRUE(m.TriangleCount() == 0 && m.vertices[7]->x == -1.0f);
    for (int i = 0; i < TRIMESH_MAX_TRIANGLES + 5; ++i)
        m.AddTriangle({{0, 1, 3}, {}});
    EXPECT_EQ(m.TriangleCount(), TRIMESH_MAX_TRIANGLES);

    float b[6], outer, inner;
    TRIMESH box;
    box.AddVertex(-2, -3, 3);
    box.AddVertex(0.5f, 5, -1);
    box.GetBounds(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &outer, &inner);
    EXPECT_EQ(std::vector<float>(b, b + 6), (std::vector<float>{-2, 0.5f, -3, 5, -1, 3}));
    // The inner radius is the nearest face, here a maximum; the outer the farthest corner.
    EXPECT_TRUE(inner == 0.5f && std::fabs(outer - std::sqrt(4.0f + 25.0f + 9.0f)) < 1e-5f);
}
