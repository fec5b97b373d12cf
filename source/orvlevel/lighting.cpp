// Static lighting: the lights are baked into the four corner colours of every
// textured side; drawing only interpolates them.
#include "orvlevel/level.h"

#include "math/geometry.h"

#include <algorithm>
#include <thread>

// Every x86-64 processor has SSE2; the lighting is written for it alone.
#include <emmintrin.h>

namespace {

// More threads than this gain nothing on a level of 5000 segments.
constexpr int MAX_LIGHTING_THREADS = 8;

struct LIGHTSOURCE
{
    VECTOR3D Position;
    VECTOR3D Scaled; // colour times brightness
};

inline __m128 Select(__m128 mask, __m128 yes, __m128 no)
{
    return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
}

// One channel of four corners after one light: add, then clamp at 1.0.
// Lanes outside `add` keep their value; lanes in `saturate` (the light sits
// on the corner) become 1.0 instead of dividing by zero.
inline __m128 LightChannel(__m128 v, float scaled, __m128 q, __m128 f, __m128 add, __m128 saturate)
{
    const __m128 one = _mm_set1_ps(1.0f);
    __m128 sum = _mm_add_ps(v, _mm_mul_ps(_mm_div_ps(_mm_set1_ps(scaled), q), f));
    v = Select(add, _mm_min_ps(one, sum), v); // min(1, x) is x > 1 ? 1 : x
    return scaled > 0.0f ? Select(saturate, one, v) : v;
}

// The four corners of a side, one per lane. Each corner depends only on its
// own running sum, so lighting corner by corner gives exactly what lighting
// light by light gives; the arithmetic is that of CosAngle and Length written
// out, single precision in the same order (division and square root are
// exact-rounded in SSE as in scalar code), so not a bit changes. Only the
// normal's length is taken once per side instead of once per corner.
void LightSide(VECTOR3D* const c[4], VECTOR3D n, float normalLength, const LIGHTSOURCE* lights, int count,
               VECTOR3D out[4])
{
    const __m128 cx = _mm_setr_ps(c[0]->x, c[1]->x, c[2]->x, c[3]->x);
    const __m128 cy = _mm_setr_ps(c[0]->y, c[1]->y, c[2]->y, c[3]->y);
    const __m128 cz = _mm_setr_ps(c[0]->z, c[1]->z, c[2]->z, c[3]->z);
    const __m128 nx = _mm_set1_ps(n.x), ny = _mm_set1_ps(n.y), nz = _mm_set1_ps(n.z);
    const __m128 length = _mm_set1_ps(normalLength);
    const __m128 zero = _mm_setzero_ps(), two = _mm_set1_ps(2.0f);
    __m128 r = zero, g = zero, b = zero;
    for (int l = 0; l < count; ++l)
    {
        const LIGHTSOURCE& light = lights[l];
        __m128 dx = _mm_sub_ps(_mm_set1_ps(light.Position.x), cx);
        __m128 dy = _mm_sub_ps(_mm_set1_ps(light.Position.y), cy);
        __m128 dz = _mm_sub_ps(_mm_set1_ps(light.Position.z), cz);
        __m128 q = _mm_add_ps(_mm_add_ps(_mm_mul_ps(dx, dx), _mm_mul_ps(dy, dy)), _mm_mul_ps(dz, dz));
        __m128 p = _mm_mul_ps(_mm_sqrt_ps(q), length);
        __m128 dot = _mm_add_ps(_mm_add_ps(_mm_mul_ps(dx, nx), _mm_mul_ps(dy, ny)), _mm_mul_ps(dz, nz));
        __m128 f = Select(_mm_cmpeq_ps(p, zero), two, _mm_div_ps(dot, p));
        __m128 lit = _mm_cmpge_ps(f, zero);
        if (!_mm_movemask_ps(lit))
            continue;
        __m128 onCorner = _mm_cmpeq_ps(q, zero);
        __m128 add = _mm_andnot_ps(onCorner, lit);
        __m128 saturate = _mm_and_ps(onCorner, lit);
        r = LightChannel(r, light.Scaled.x, q, f, add, saturate);
        g = LightChannel(g, light.Scaled.y, q, f, add, saturate);
        b = LightChannel(b, light.Scaled.z, q, f, add, saturate);
    }
    alignas(16) float rs[4], gs[4], bs[4];
    _mm_store_ps(rs, r);
    _mm_store_ps(gs, g);
    _mm_store_ps(bs, b);
    for (int k = 0; k < 4; ++k)
        out[k] = VECTOR3D(rs[k], gs[k], bs[k]);
}


} // namespace

void ORVLEVEL::CalculateLighting()
{
    if (!Segments)
        return;
    LIGHTSOURCE lights[MAX_LIGHTS];
    int count = 0;
    if (Lights)
        for (int i = 0; i < MAX_LIGHTS; ++i)
            if (const STATICLIGHT* l = Lights[i])
                lights[count++] = {l->Position, l->Colour * l->Brightness};

    auto lightSegments = [&](int begin, int end) {
        for (int s = begin; s < end; ++s)
        {
            SEGMENT* seg = Segments[s];
            if (!seg)
                continue;
            for (int i = 0; i < 6; ++i)
            {
                SIDE& side = seg->Sides[i];
                if (side.Texture == -1)
                    continue;
                VECTOR3D* c[4];
                if (!SidePoints(*seg, i, c))
                {
                    // No plane to light: the side stays dark like an unlit one.
                    for (VECTOR3D& colour : side.Colours)
                        colour = VECTOR3D();
                    continue;
                }
                VECTOR3D n = TriangleNormal(*c[0], *c[1], *c[2]);
                LightSide(c, n, Length(n), lights, count, side.Colours);
            }
        }
    };

    // Every side is lit by exactly one thread and on its own, so how the
    // segments are shared out cannot change a bit of the result. Each thread
    // gets an equal share of the existing segments.
    int threads = std::clamp(int(std::thread::hardware_concurrency()), 1, MAX_LIGHTING_THREADS);
    int existing = 0;
    for (int s = 0; s < SegmentsEnd(); ++s)
        existing += Segments[s] != nullptr;
    if (count == 0 || existing < 64)
        threads = 1;
    int bounds[MAX_LIGHTING_THREADS + 1] = {};
    for (int s = 0, seen = 0, t = 1; s < SegmentsEnd() && t < threads; ++s)
        if (Segments[s] && seen++ == existing * t / threads)
            bounds[t++] = s;
    bounds[threads] = SegmentsEnd();

    std::thread workers[MAX_LIGHTING_THREADS];
    for (int t = 1; t < threads; ++t)
    {
        try
        {
            workers[t] = std::thread(lightSegments, bounds[t], bounds[t + 1]);
        }
        catch (...)
        {
            lightSegments(bounds[t], bounds[t + 1]); // no thread to spare: do it here
        }
    }
    lightSegments(bounds[0], bounds[1]);
    for (std::thread& w : workers)
        if (w.joinable())
            w.join();
    Changed();
}

void ORVLEVEL::FullBrightness()
{
    if (!Segments)
        return;
    for (int s = 0; s < SegmentsEnd(); ++s)
        if (SEGMENT* seg = Segments[s])
            for (SIDE& side : seg->Sides)
                for (VECTOR3D& colour : side.Colours)
                    colour = VECTOR3D(1, 1, 1);
    Changed();
}

VECTOR3D ORVLEVEL::SegmentColour(const SEGMENT& s) const
{
    VECTOR3D sum;
    int count = 0;
    for (const SIDE& side : s.Sides)
    {
        if (side.Texture == -1)
            continue;
        for (const VECTOR3D& colour : side.Colours)
            sum += colour;
        count += 4;
    }
    if (count == 0)
        return VECTOR3D(1, 1, 1);
    return sum / float(count);
}

int32_t ORVLEVEL::NewLight(VECTOR3D position, double red, double green, double blue, float brightness)
{
    // The dialog's own conversion: a multiplication, not a division by 255.
    const double fromByte = 0.00392156862745098;
    STATICLIGHT light;
    light.Position = position;
    light.Colour = VECTOR3D(float(red * fromByte), float(green * fromByte), float(blue * fromByte));
    light.Brightness = brightness;
    return Add(light);
}
