#include "render/drawlevel.h"
#include "render/glcontext.h"
#include "render/gltexture.h"

#include "graphics/texture.h"
#include "math/geometry.h"
#include "orvlevel/level.h"
#include "platform/platform.h"
#include "things/thing.h"

#include <GL/gl.h>

#include <cmath>
#include <vector>

namespace {

// One side as it is sent: corner positions (doors moved), colours, texture
// pairs and the face normal.
struct SIDEVERTS
{
    VECTOR3D Position[4];
    VECTOR3D Colour[4];
    TEXPAIR Tex[4];
    VECTOR3D Normal;
};

void Blink(ORVLEVEL& level)
{
    if (level.BlinkTimer->Elapsed())
    {
        level.BlinkOn = !level.BlinkOn;
        level.BlinkTimer->Set(500);
    }
}

// The texture name a side is drawn with; false when the side is skipped.
bool SideTexture(const ORVLEVEL& level, const SIDE& side, bool drawUntextured, uint32_t& name)
{
    if (side.Texture == -1)
    {
        if (!drawUntextured)
            return false;
        name = level.InvisibleSideTexture ? level.InvisibleSideTexture->GLName : 0;
        return true;
    }
    // A texture index that names nothing (a broken file) draws untextured.
    const TEXTURE* t = side.Texture >= 0 && side.Texture < MAX_TEXTURES ? level.Textures[side.Texture] : nullptr;
    name = t ? t->GLName : 0;
    return true;
}

// False when a corner names no point: such a side is not drawn.
bool SideVertices(const ORVLEVEL& level, const SEGMENT& s, int32_t index, int i, bool highlight,
                  const SEGMENT* highlightSegment, const uint8_t* marked, SIDEVERTS& v)
{
    VECTOR3D c[4];
    for (int k = 0; k < 4; ++k)
    {
        const VECTOR3D* p = level.PointAt(s.Corners[SideCorners[i][k]]);
        if (!p)
            return false;
        c[k] = *p;
    }
    const SIDE& side = s.Sides[i];
    v.Normal = TriangleNormal(c[0], c[1], c[2]);
    VECTOR3D offset = level.DoorOffset(index, i);
    int e = 0;
    for (int k = 0; k < 4; ++k)
        v.Tex[k] = side.TexCoords[k];
    if (side.WallType == WALL_DOOR)
    {
        // The corners that stay take the pairs of a point further along the
        // sliding edge, so the texture travels with the panel.
        e = level.DoorSlideEdge(index, i);
        TEXPAIR& te = v.Tex[e];
        const TEXPAIR& tn = v.Tex[(e + 1) % 4];
        float ds = (tn.s - te.s) * side.Door.Opening;
        float dt = (tn.t - te.t) * side.Door.Opening;
        te.s += ds;
        te.t += dt;
        v.Tex[(e + 3) % 4].s += ds;
        v.Tex[(e + 3) % 4].t += dt;
    }
    bool halved = index == level.CurrentSegment && i == level.CurrentSide && level.BlinkOn;
    bool tinted = marked && index >= 0 && index < MAX_SEGMENTS && marked[index];
    for (int k = 0; k < 4; ++k)
    {
        v.Position[k] = c[k];
        if (k == (e + 1) % 4 || k == (e + 2) % 4)
            v.Position[k] += offset;
        VECTOR3D colour = side.Colours[k];
        if (tinted) // a quarter of the way to amber: the blink's halving still shows
            colour = VECTOR3D(colour.x * 0.75f + 0.25f, colour.y * 0.75f + 0.15f, colour.z * 0.75f);
        if (halved)
            colour = colour * 0.5f;
        if (highlight)
        {
            if (&s == highlightSegment)
                colour = VECTOR3D(0.5f, 1.0f, 0.5f);
            if (highlightSegment)
                for (int32_t n : highlightSegment->Neighbours)
                    if (n == index)
                        colour = VECTOR3D(1.0f, 0.5f, 0.5f);
        }
        v.Colour[k] = colour;
    }
    return true;
}

// Steps after the sides: objects, the viewer's cockpit, markers, selection.
void DrawThingsAndMarks(ORVLEVEL& level, bool drawMarkers, THING* viewer)
{
    bool viewerInLevel = false;
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        THING* t = level.Things[i];
        if (t && t == viewer)
            viewerInLevel = true;
        if (t && t != viewer && !t->dead)
            t->Draw();
    }
    if (viewerInLevel)
        viewer->DrawCockpit();

    char text[160];
    if (drawMarkers)
    {
        BindTexture(0);
        for (int i = 0; i < MAX_LIGHTS; ++i)
            if (const STATICLIGHT* l = level.Lights[i])
            {
                VECTOR3D p = l->Position;
                glColor3f(l->Colour.x, l->Colour.y, l->Colour.z);
                DrawWireBox(p.x - 5, p.y - 5, p.z - 5, p.x + 5, p.y + 5, p.z + 5);
                CFormat(text, sizeof text, "%-0.0f", double(l->Brightness));
                Print3D(p.x, p.y, p.z, text, FONT_LIST_BASE);
            }
        glColor3f(1, 1, 1);
        for (int i = 0; i < MAX_SPECPOINTS; ++i)
            if (const SPECPOINT* sp = level.SpecPoints[i])
            {
                VECTOR3D p = sp->Position;
                DrawWireBox(p.x - 5, p.y - 5, p.z - 5, p.x + 5, p.y + 5, p.z + 5);
                if (sp->Type == 0)
                {
                    CFormat(text, sizeof text, "%s", "SP start");
                    Print3D(p.x, p.y, p.z, text, FONT_LIST_BASE);
                }
            }
    }

    const VECTOR3D* selected = level.GetCurrentPointPtr();
    if (!selected)
        return;
    VECTOR3D p = *selected;
    glDisable(GL_TEXTURE_2D);
    glColor3f(1, 1, 1);
    // The body diagonals of the cube of half-size 5 around the corner.
    glBegin(GL_LINES);
    glVertex3f(p.x - 5, p.y - 5, p.z - 5);
    glVertex3f(p.x + 5, p.y + 5, p.z + 5);
    glVertex3f(p.x + 5, p.y - 5, p.z - 5);
    glVertex3f(p.x - 5, p.y + 5, p.z + 5);
    glVertex3f(p.x - 5, p.y + 5, p.z - 5);
    glVertex3f(p.x + 5, p.y - 5, p.z + 5);
    glVertex3f(p.x + 5, p.y + 5, p.z - 5);
    glVertex3f(p.x - 5, p.y - 5, p.z + 5);
    glEnd();
    glDisable(GL_DEPTH_TEST);
    const SEGMENT& s = *level.GetCurrentSegment();
    for (int k = 0; k < 4; ++k)
        if (k != level.CurrentPoint)
            if (const VECTOR3D* c = level.PointAt(s.Corners[SideCorners[level.CurrentSide][k]]))
            {
                CFormat(text, sizeof text, "%d", k);
                Print3D(c->x, c->y, c->z, text, FONT_LIST_BASE);
            }
    TEXPAIR t = level.GetCurrentSide()->TexCoords[level.CurrentPoint];
    CFormat(text, sizeof text, "[%-0.1f,%-0.1f,%-0.1f][%-0.1f,%-0.1f]", double(p.x), double(p.y), double(p.z),
            double(t.s), double(t.t));
    Print3D(p.x, p.y, p.z, text, FONT_LIST_BASE);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
}

} // namespace

void DrawLevel(ORVLEVEL& level, bool drawUntextured, bool drawMarkers, THING* viewer, bool highlight,
               SEGMENT* highlightSegment, const uint8_t* marked)
{
    if (!level.Segments || !level.BlinkTimer)
        return; // a cleared level has nothing to draw
    Blink(level);

    if (!level.ListBuilt)
    {
        for (uint32_t n = 1; n <= 9999; ++n)
            if (!glIsList(n))
            {
                level.DisplayList = n;
                break;
            }
        glNewList(level.DisplayList, GL_COMPILE_AND_EXECUTE);
    }
    else if (level.DisplayList != 0)
        glCallList(level.DisplayList);

    for (int32_t index = 0; index < level.SegmentsEnd(); ++index)
    {
        const SEGMENT* s = level.Segments[index];
        if (!s)
            continue;
        for (int i = 0; i < 6; ++i)
        {
            const SIDE& side = s->Sides[i];
            // Doors never enter the list: they are drawn every frame.
            bool drawNow = level.DisplayList == 0 ||
                           (!level.ListBuilt ? side.WallType != WALL_DOOR : side.WallType == WALL_DOOR);
            uint32_t name;
            SIDEVERTS v;
            if (!drawNow || !SideTexture(level, side, drawUntextured, name) ||
                !SideVertices(level, *s, index, i, highlight, highlightSegment, marked, v))
                continue;
            BindTexture(name);
            glBegin(GL_QUADS);
            for (int k = 0; k < 4; ++k)
            {
                glColor3f(v.Colour[k].x, v.Colour[k].y, v.Colour[k].z);
                glTexCoord2f(v.Tex[k].s, v.Tex[k].t);
                glNormal3f(v.Normal.x, v.Normal.y, v.Normal.z);
                glVertex3f(v.Position[k].x, v.Position[k].y, v.Position[k].z);
            }
            glEnd();
            glColor3f(1, 1, 1);
        }
    }

    if (!level.ListBuilt)
    {
        glEndList();
        ORV_ASSERT(glGetError()==GL_NO_ERROR, "source/orvlevel");
        level.ListBuilt = true;
    }
    DrawThingsAndMarks(level, drawMarkers, viewer);
}

void InvalidateDisplayList(ORVLEVEL& level)
{
    if (level.DisplayList != 0 && glIsList(level.DisplayList))
        glDeleteLists(level.DisplayList, 1);
    level.ListBuilt = true;
    level.DisplayList = 0;
}

namespace {

// A corner in clip coordinates, with one bit for each clip plane it lies
// wholly outside of.
struct CLIPPOINT
{
    double X, Y, W;
    unsigned Outside;
};

// Decides on the processor which sides can make no fragment: those wholly
// outside one clip plane (so outside the view), and those that face away
// while back faces are culled. Every margin is far wider than the rounding
// of OpenGL's own transform and the rasteriser's snapping of corners to the
// subpixel grid, so a side that could touch a pixel is always sent.
struct VIEWTEST
{
    double M[16]; // projection x modelview, column-major
    double HalfWidth = 0, HalfHeight = 0;
    bool CullBack = false; // back faces culled, counter-clockwise front

    VIEWTEST()
    {
        GLdouble p[16], mv[16];
        glGetDoublev(GL_PROJECTION_MATRIX, p);
        glGetDoublev(GL_MODELVIEW_MATRIX, mv);
        for (int c = 0; c < 4; ++c)
            for (int r = 0; r < 4; ++r)
            {
                double sum = 0;
                for (int k = 0; k < 4; ++k)
                    sum += p[k * 4 + r] * mv[c * 4 + k];
                M[c * 4 + r] = sum;
            }
        GLint viewport[4], mode = 0, front = 0;
        glGetIntegerv(GL_VIEWPORT, viewport);
        glGetIntegerv(GL_CULL_FACE_MODE, &mode);
        glGetIntegerv(GL_FRONT_FACE, &front);
        HalfWidth = viewport[2] / 2.0;
        HalfHeight = viewport[3] / 2.0;
        CullBack = glIsEnabled(GL_CULL_FACE) && mode == GL_BACK && front == GL_CCW;
    }

    CLIPPOINT Transform(VECTOR3D v) const
    {
        double c[4];
        for (int r = 0; r < 4; ++r)
            c[r] = M[r] * v.x + M[4 + r] * v.y + M[8 + r] * v.z + M[12 + r];
        double margin = 1e-4 * (std::fabs(c[0]) + std::fabs(c[1]) + std::fabs(c[2]) + std::fabs(c[3]) + 1.0);
        unsigned code = 0;
        for (int a = 0; a < 3; ++a)
        {
            if (c[3] + c[a] < -margin)
                code |= 1u << (2 * a);
            if (c[3] - c[a] < -margin)
                code |= 2u << (2 * a);
        }
        return {c[0], c[1], c[3], code};
    }

    // True only when every triangle OpenGL could split the quadrilateral
    // into is clearly clockwise on the screen, all corners in front of the
    // eye.
    bool FacesAway(const CLIPPOINT* q[4]) const
    {
        if (!CullBack)
            return false;
        double x[4], y[4];
        for (int k = 0; k < 4; ++k)
        {
            if (!(q[k]->W > 1e-3))
                return false;
            x[k] = q[k]->X / q[k]->W * HalfWidth;
            y[k] = q[k]->Y / q[k]->W * HalfHeight;
        }
        static const int Triangles[4][3] = {{0, 1, 2}, {0, 2, 3}, {0, 1, 3}, {1, 2, 3}};
        for (const auto& t : Triangles)
        {
            double dx1 = x[t[1]] - x[t[0]], dy1 = y[t[1]] - y[t[0]];
            double dx2 = x[t[2]] - x[t[0]], dy2 = y[t[2]] - y[t[0]];
            double area = dx1 * dy2 - dx2 * dy1;
            double margin = 1.0 + 0.05 * (std::fabs(dx1) + std::fabs(dy1) + std::fabs(dx2) + std::fabs(dy2));
            if (!(area < -margin))
                return false;
        }
        return true;
    }
};

// Sides waiting to be drawn with one texture: s, t, r, g, b, x, y, z per
// corner, the layout of GL_T2F_C3F_V3F.
struct RUN
{
    std::vector<float> Vertices;
    uint32_t Texture = 0;

    void Add(const SIDEVERTS& v)
    {
        for (int k = 0; k < 4; ++k)
        {
            const float corner[11] = {v.Tex[k].s,      v.Tex[k].t,      v.Colour[k].x,   v.Colour[k].y,
                                     v.Colour[k].z,   v.Normal.x, v.Normal.y, v.Normal.z, v.Position[k].x, v.Position[k].y, v.Position[k].z};
            Vertices.insert(Vertices.end(), corner, corner + 11);
        }
    }

    void Flush()
    {
        if (Vertices.empty())
            return;
        BindTexture(Texture);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        glEnableClientState(GL_NORMAL_ARRAY);
        glEnableClientState(GL_VERTEX_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, 44, Vertices.data());
        glColorPointer(3, GL_FLOAT, 44, Vertices.data() + 2);
        glNormalPointer(GL_FLOAT, 44, Vertices.data() + 5);
        glVertexPointer(3, GL_FLOAT, 44, Vertices.data() + 8);
        glDrawArrays(GL_QUADS, 0, GLsizei(Vertices.size() / 11));
        Vertices.clear();
    }
};

} // namespace

int DrawLevelBatched(ORVLEVEL& level, bool drawUntextured, bool drawMarkers, THING* viewer, bool highlight,
                     SEGMENT* highlightSegment, const uint8_t* marked)
{
    if (!level.Segments || !level.BlinkTimer)
        return 0;
    // Sides that make no fragment are left out below, and with them their
    // binds. That gives the
    // same result only while the cache says what OpenGL has bound.
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    if (!level.ListBuilt || level.DisplayList != 0 || uint32_t(bound) != BoundTexture)
    {
        DrawLevel(level, drawUntextured, drawMarkers, viewer, highlight, highlightSegment, marked);
        return -1;
    }
    Blink(level);

    static RUN run; // kept between frames for its memory
    run.Vertices.clear();
    const VIEWTEST view;
    int32_t lastSegment = -1; // the last side the plain drawing would send
    int lastSide = 0;
    uint32_t lastTexture = 0;
    int sent = 0;

    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    for (int32_t index = 0; index < level.SegmentsEnd(); ++index)
    {
        const SEGMENT* s = level.Segments[index];
        if (!s)
            continue;
        CLIPPOINT corner[8];
        unsigned all = ~0u;
        bool complete = true;
        for (int c = 0; c < 8; ++c)
        {
            const VECTOR3D* p = level.PointAt(s->Corners[c]);
            corner[c] = p ? view.Transform(*p) : CLIPPOINT{0, 0, 0, 0};
            complete = complete && p;
            all &= corner[c].Outside;
        }
        for (int i = 0; i < 6; ++i)
        {
            const SIDE& side = s->Sides[i];
            uint32_t name;
            if (!SideTexture(level, side, drawUntextured, name))
                continue;
            // Doors move their corners, and a side with a missing corner may
            // still be whole: both are built before they are tested.
            bool hidden;
            SIDEVERTS v;
            if (side.WallType != WALL_DOOR && complete)
            {
                // A segment wholly outside takes all its sides with it.
                hidden = all != 0;
                if (!hidden)
                {
                    const CLIPPOINT* q[4];
                    unsigned outside = ~0u;
                    for (int k = 0; k < 4; ++k)
                    {
                        q[k] = &corner[SideCorners[i][k]];
                        outside &= q[k]->Outside;
                    }
                    hidden = outside != 0 || view.FacesAway(q);
                }
                if (!hidden)
                    SideVertices(level, *s, index, i, highlight, highlightSegment, marked, v);
            }
            else
            {
                if (!SideVertices(level, *s, index, i, highlight, highlightSegment, marked, v))
                    continue;
                CLIPPOINT moved[4];
                const CLIPPOINT* q[4];
                unsigned outside = ~0u;
                for (int k = 0; k < 4; ++k)
                {
                    moved[k] = view.Transform(v.Position[k]);
                    q[k] = &moved[k];
                    outside &= moved[k].Outside;
                }
                hidden = outside != 0 || view.FacesAway(q);
            }
            lastSegment = index;
            lastSide = i;
            lastTexture = name;
            if (hidden)
                continue;
            if (name != run.Texture)
            {
                run.Flush();
                run.Texture = name;
            }
            run.Add(v);
            ++sent;
        }
    }
    run.Flush();
    glPopClientAttrib();
    // A software rasteriser can start on the sides while the markers and
    // their labels are prepared.
    glFlush();

    // Leave the binding and the current values as the plain drawing does.
    if (lastSegment >= 0)
    {
        SIDEVERTS v;
        SideVertices(level, *level.Segments[lastSegment], lastSegment, lastSide, highlight, highlightSegment, marked, v);
        BindTexture(lastTexture);
        glTexCoord2f(v.Tex[3].s, v.Tex[3].t);
        glNormal3f(v.Normal.x, v.Normal.y, v.Normal.z);
        glColor3f(1, 1, 1);
    }
    DrawThingsAndMarks(level, drawMarkers, viewer);
    return sent;
}
