#include "editor/panels.h"

#include "orvlevel/level.h"
#include "things/thing.h"

#include <charconv>
#include <cmath>
#include <cstdio>

// ---------------------------------------------------------------------------
// The check

bool CHECKCACHE::Due(const ORVLEVEL& level) const
{
    return Level != &level || Revision != level.Revision;
}

bool CHECKCACHE::Refresh(const ORVLEVEL& level)
{
    std::vector<LEVELPROBLEM> found = CheckLevel(level);
    Level = &level;
    Revision = level.Revision;
    bool same = found.size() == Found.size();
    for (size_t i = 0; same && i < found.size(); ++i)
        same = found[i].Text == Found[i].Text;
    Found = std::move(found);
    return !same;
}

// ---------------------------------------------------------------------------
// Objects

namespace {

std::string Where(VECTOR3D p)
{
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "(%.0f, %.0f, %.0f)", double(p.x), double(p.y), double(p.z));
    return buffer;
}

} // namespace

std::vector<LEVELOBJECT> ListObjects(const ORVLEVEL& level)
{
    std::vector<LEVELOBJECT> out;
    for (int32_t i = 0; level.Things && i < MAX_THINGS; ++i)
        if (const THING* t = level.Things[i])
            out.push_back({OBJ_THING, i, t->position,
                           "Cucc " + std::to_string(i) + " (" + t->ClassName() + ") " + Where(t->position)});
    for (int32_t i = 0; level.Lights && i < MAX_LIGHTS; ++i)
        if (const STATICLIGHT* l = level.Lights[i])
            out.push_back({OBJ_LIGHT, i, l->Position, "Fényforrás " + std::to_string(i) + " " + Where(l->Position)});
    for (int32_t i = 0; level.SpecPoints && i < MAX_SPECPOINTS; ++i)
        if (const SPECPOINT* sp = level.SpecPoints[i])
            out.push_back({OBJ_SPECPOINT, i, sp->Position,
                           (sp->Type == 0 ? "Kezdőpont " : "Különleges pont ") + std::to_string(i) + " " +
                               Where(sp->Position)});
    return out;
}

bool DeleteObject(ORVLEVEL& level, int kind, int32_t index)
{
    const uint64_t before = level.Revision;
    switch (kind)
    {
    case OBJ_THING: level.DeleteThing(index); break;
    case OBJ_LIGHT: level.DeleteLight(index); break;
    case OBJ_SPECPOINT: level.DeleteSpecPoint(index); break;
    default: break;
    }
    return level.Revision != before;
}

// ---------------------------------------------------------------------------
// The camera

void LookAt(CAMERA& camera, VECTOR3D target)
{
    VECTOR3D dir = target - camera.Position;
    const float length = Length(dir);
    if (!(length > 1e-4f))
        return;
    dir /= length;
    // The new right axis from the old up; straight up or down, from the old view.
    VECTOR3D right = Cross(dir, camera.Up);
    if (!(Length(right) > 1e-3f))
        right = Cross(dir, camera.ViewDir * -1.0f);
    if (!(Length(right) > 1e-3f))
        right = Cross(dir, std::fabs(dir.y) < 0.9f ? VECTOR3D(0, 1, 0) : VECTOR3D(0, 0, 1));
    right /= Length(right);
    camera.ViewDir = dir;
    camera.Right = right;
    camera.Up = Cross(right, dir);
}

namespace {

bool Centre(const ORVLEVEL& level, const SEGMENT& seg, const int* slots, int count, VECTOR3D& out)
{
    VECTOR3D sum;
    for (int k = 0; k < count; ++k)
    {
        const VECTOR3D* p = level.PointAt(seg.Corners[slots[k]]);
        if (!p)
            return false;
        sum += *p;
    }
    out = sum / float(count);
    return true;
}

} // namespace

bool LookAtSide(CAMERA& camera, const ORVLEVEL& level, int32_t segment, int32_t side)
{
    if (!level.Segments || segment < 0 || segment >= MAX_SEGMENTS || !level.Segments[segment])
        return false;
    const SEGMENT& seg = *level.Segments[segment];
    static const int ALL[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    VECTOR3D middle, face;
    if (!Centre(level, seg, ALL, 8, middle))
        return false;
    camera.Position = middle;
    if (side >= 0 && side < 6 && Centre(level, seg, SideCorners[side], 4, face))
        LookAt(camera, face);
    return true;
}

void FlyTo(CAMERA& camera, const ORVLEVEL& level, VECTOR3D target)
{
    VECTOR3D back = camera.Position - target;
    const float length = Length(back);
    back = length > 1e-3f ? back / length : camera.ViewDir * -1.0f;
    // As close as a ship's length when the way there is open; the target's
    // own segment otherwise.
    const bool inside = level.FindSegment(target) >= 0;
    float distance = 150.0f;
    while (inside && distance > 10.0f && level.FindSegment(target + back * distance) < 0)
        distance *= 0.5f;
    camera.Position = target + back * distance;
    LookAt(camera, target);
}

std::optional<VECTOR3D> ProblemObjectPosition(const ORVLEVEL& level, const LEVELPROBLEM& p)
{
    if (p.Object < 0)
    {
        if (const VECTOR3D* point = level.PointAt(p.Point))
            return *point;
        return std::nullopt;
    }
    switch (p.Fix)
    {
    case FIX_MOVETHING:
        if (level.Things && p.Object < MAX_THINGS && level.Things[p.Object])
            return level.Things[p.Object]->position;
        break;
    case FIX_MOVELIGHT:
        if (level.Lights && p.Object < MAX_LIGHTS && level.Lights[p.Object])
            return level.Lights[p.Object]->Position;
        break;
    case FIX_MOVESPECPOINT:
        if (level.SpecPoints && p.Object < MAX_SPECPOINTS && level.SpecPoints[p.Object])
            return level.SpecPoints[p.Object]->Position;
        break;
    default: break;
    }
    return std::nullopt;
}

std::string CameraText(const CAMERA& c)
{
    std::string out;
    for (VECTOR3D v : {c.Position, c.ViewDir, c.Up, c.Right})
        for (float f : {v.x, v.y, v.z})
        {
            char buffer[32];
            auto end = std::to_chars(buffer, buffer + sizeof buffer, f).ptr;
            if (!out.empty())
                out += ' ';
            out.append(buffer, end);
        }
    return out;
}

bool CameraFromText(const std::string& text, CAMERA& camera)
{
    float f[12];
    const char* at = text.data();
    const char* end = text.data() + text.size();
    for (float& v : f)
    {
        while (at < end && *at == ' ')
            ++at;
        auto [next, error] = std::from_chars(at, end, v);
        if (error != std::errc() || !std::isfinite(v))
            return false;
        at = next;
    }
    if (at != end)
        return false;
    camera.Position = {f[0], f[1], f[2]};
    camera.ViewDir = {f[3], f[4], f[5]};
    camera.Up = {f[6], f[7], f[8]};
    camera.Right = {f[9], f[10], f[11]};
    return true;
}
