#include "orvlevel/level.h"

#include "math/geometry.h"
#include "math/random.h"
#include "orvlevel/tests/leveltesting.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

class LightingTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();
    VECTOR3D& Corner(int side, int k) { return L->Segments[0]->Sides[side].Colours[k]; }
    void AddLight(VECTOR3D p, VECTOR3D colour, float brightness) { L->Add(STATICLIGHT{p, colour, brightness}); }
};

// Every textured side's corners must come out exactly as adding the lights
// one by one in table order, clamping after each, leaves them (black without
// lights); untextured sides keep their colours.
TEST_F(LightingTest, SameBitsAsLightByLight)
{
    SRand(7);
    auto jitter = [] { return float(Rand() % 4001 - 2000) / 100.0f; };
    for (int n = 0; n < 100; ++n) // enough to be shared among threads
    {
        SEGMENT s = *L->Segments[0];
        VECTOR3D offset(float(n % 5) * 230, float(n / 5 % 4) * 210, float(n / 20) * -190);
        for (int i = 0; i < 8; ++i)
            s.Corners[i] = L->Add(DefaultCubeCorners[i] + offset + VECTOR3D(jitter(), jitter(), jitter()));
        s.Sides[n % 6].Texture = -1;
        for (VECTOR3D& colour : s.Sides[n % 6].Colours)
            colour = {0.3f, 0.4f, 0.5f};
        L->Add(&s);
    }
    auto expectLightByLight = [&] {
        L->CalculateLighting();
        for (int s = 0; L->Segments[s]; ++s)
            for (int i = 0; i < 6; ++i)
            {
                const SIDE& side = L->Segments[s]->Sides[i];
                const VECTOR3D* c = L->GetSideCorners(s, i);
                VECTOR3D n = TriangleNormal(c[0], c[1], c[2]);
                for (int k = 0; k < 4; ++k)
                {
                    VECTOR3D want = side.Texture != -1 ? VECTOR3D() : VECTOR3D(0.3f, 0.4f, 0.5f);
                    for (int l = 0; side.Texture != -1 && L->Lights[l]; ++l)
                    {
                        const STATICLIGHT& light = *L->Lights[l];
                        VECTOR3D d = light.Position - c[k];
                        float f = CosAngle(d, n);
                        if (f < 0.0f)
                            continue;
                        want += light.Colour * light.Brightness / (d.x * d.x + d.y * d.y + d.z * d.z) * f;
                        want = {std::min(want.x, 1.0f), std::min(want.y, 1.0f), std::min(want.z, 1.0f)};
                    }
                    ASSERT_EQ(want, side.Colours[k]) << s << " " << i << " " << k;
                }
            }
    };
    expectLightByLight();
    for (int n = 0; n < 20; ++n)
        AddLight({jitter() * 40, jitter() * 30, jitter() * 30}, {Rand() / 32767.0f, 1, 0.2f}, float(Rand() * 10));
    expectLightByLight();
    L->FullBrightness();
    EXPECT_EQ(L->Segments[1]->Sides[0].Colours[2], VECTOR3D(1, 1, 1));
}

TEST_F(LightingTest, SegmentColourAndNewLight)
{
    SEGMENT& s = *L->Segments[0];
    for (int i = 0; i < 24; ++i)
        Corner(i / 4, i % 4) = VECTOR3D(i / 4 * 0.1f, 0, 1);
    s.Sides[5].Texture = -1;
    ExpectNear(L->SegmentColour(s), {0.2f, 0, 1}, 1e-4f); // the mean of sides 0 ... 4
    for (SIDE& side : s.Sides)
        side.Texture = -1;
    ExpectNear(L->SegmentColour(s), {1, 1, 1}, 0);

    EXPECT_EQ(L->NewLight({1, 2, 3}, 255, 0, 51, 10000), 0);
    ExpectNear(L->Lights[0]->Colour, {1, 0, 0.2f}, 1e-6f);
}

} // namespace
