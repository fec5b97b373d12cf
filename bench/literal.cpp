#include "literal.h"

#include "math/geometry.h"

void LiteralRemoveUnusedPoints(ORVLEVEL& level)
{
    for (int i = 0; i < MAX_POINTS; ++i)
    {
        if (!level.Points[i])
            continue;
        bool used = false;
        for (int s = 0; s < MAX_SEGMENTS && !used; ++s)
            if (const SEGMENT* seg = level.Segments[s])
                for (int c = 0; c < 8; ++c)
                    if (seg->Corners[c] == i)
                        used = true;
        if (!used)
            level.DeletePoint(i);
    }
}

void LiteralDeleteSegment(ORVLEVEL& level, int32_t index)
{
    SEGMENT* s = level.Segments[index];
    if (!s)
        return;
    for (int i = 0; i < 6; ++i)
        if (s->Neighbours[i] != -1)
            level.Unlink(index, i);
    level.DropSegment(index);
    LiteralRemoveUnusedPoints(level);
}

void LiteralCalculateLighting(ORVLEVEL& level)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        if (SEGMENT* seg = level.Segments[s])
            for (SIDE& side : seg->Sides)
                if (side.Texture != -1)
                    for (VECTOR3D& c : side.Colours)
                        c = VECTOR3D(0, 0, 0);

    for (int l = 0; l < MAX_LIGHTS; ++l)
    {
        const STATICLIGHT* light = level.Lights[l];
        if (!light)
            continue;
        for (int s = 0; s < MAX_SEGMENTS; ++s)
        {
            SEGMENT* seg = level.Segments[s];
            if (!seg)
                continue;
            for (int i = 0; i < 6; ++i)
            {
                SIDE& side = seg->Sides[i];
                if (side.Texture == -1)
                    continue;
                const VECTOR3D* got = level.GetSideCorners(s, i);
                if (!got)
                    continue;
                VECTOR3D c[4] = {got[0], got[1], got[2], got[3]};
                VECTOR3D n = TriangleNormal(c[0], c[1], c[2]);
                for (int k = 0; k < 4; ++k)
                {
                    VECTOR3D d = light->Position - c[k];
                    float q = d.x * d.x + d.y * d.y + d.z * d.z;
                    float f = CosAngle(d, n);
                    if (f < 0.0f)
                        continue;
                    VECTOR3D scaled = light->Colour * light->Brightness;
                    VECTOR3D add = VECTOR3D(scaled.x / q, scaled.y / q, scaled.z / q) * f;
                    VECTOR3D& col = side.Colours[k];
                    col += add;
                    if (col.x > 1.0f)
                        col.x = 1.0f;
                    if (col.y > 1.0f)
                        col.y = 1.0f;
                    if (col.z > 1.0f)
                        col.z = 1.0f;
                }
            }
        }
    }
}

void LiteralPickSide(ORVLEVEL& level, int x, int y, const CAMERA& camera, int width, int height)
{
    float sx = (x - width * 0.5f) / (width * 0.5f);
    float sy = (y - height * 0.5f) / (height * 0.5f) * camera.Aspect;
    VECTOR3D o = camera.Position;
    VECTOR3D d = camera.ViewDir + sx * camera.Right - sy * camera.Up;
    level.CurrentSide = 0;
    float best = 1.0e20f;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        if (!level.Segments[s])
            continue;
        for (int i = 0; i < 6; ++i)
        {
            const VECTOR3D* got = level.GetSideCorners(s, i);
            if (!got)
                continue;
            VECTOR3D c[4] = {got[0], got[1], got[2], got[3]};
            float t, u, v;
            bool hit = IntersectRayTriangle(c[0], c[1], c[2], o, d, &t, &u, &v, true) ||
                       IntersectRayTriangle(c[0], c[2], c[3], o, d, &t, &u, &v, true);
            if (hit && best > t)
            {
                best = t;
                level.CurrentSide = i;
                level.CurrentSegment = s;
            }
        }
    }
}

int32_t LiteralFindSegment(const ORVLEVEL& level, VECTOR3D p)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        const SEGMENT* seg = level.Segments[s];
        if (!seg)
            continue;
        bool inside = true;
        for (int i = 0; i < 6 && inside; ++i)
        {
            const VECTOR3D* c[3];
            for (int k = 0; k < 3; ++k)
                c[k] = level.PointAt(seg->Corners[SideCorners[i][k]]);
            if (!c[0] || !c[1] || !c[2])
                inside = false;
            else if (CosAngle(p - *c[0], TriangleNormal(*c[0], *c[1], *c[2])) < 0)
                inside = false;
        }
        if (inside)
            return s;
    }
    return -1;
}

bool LiteralCollidePoint(ORVLEVEL& level, VECTOR3D* from, float distance, bool swept, VECTOR3D* to,
                         bool correct)
{
    bool any = false;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        SEGMENT* seg = level.Segments[s];
        if (!seg)
            continue;
        for (int i = 0; i < 6; ++i)
        {
            int32_t wall = seg->Sides[i].WallType;
            if (wall == WALL_PASSABLE)
                continue;
            const VECTOR3D* got = level.GetSideCorners(s, i);
            if (!got)
                continue;
            VECTOR3D c[4] = {got[0], got[1], got[2], got[3]};
            // A door's two sliding corners as drawn; no offset on other walls.
            int32_t e = level.DoorSlideEdge(s, i);
            VECTOR3D offset = level.DoorOffset(s, i);
            c[(e + 1) % 4] += offset;
            c[(e + 2) % 4] += offset;
            bool hit = ORVLEVEL::CollideTriangle(from, c[0], c[1], c[3], distance, swept, to, correct);
            if (!hit)
                hit = ORVLEVEL::CollideTriangle(from, c[1], c[2], c[3], distance, swept, to, correct);
            if (hit && wall == WALL_DOOR && correct)
                level.OpenDoor(s, i);
            any |= hit;
        }
    }
    return any;
}
