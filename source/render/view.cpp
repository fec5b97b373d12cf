#include "render/view.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/gltexture.h"

#include "orvlevel/level.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <cstring>

ORVERENDER::ORVERENDER(std::function<void()> makeCurrent, std::function<void()> swap)
    : GLRENDERINGCONTEXT(std::move(makeCurrent), std::move(swap))
{
    // Texels made transparent by the black colour key are discarded, so
    // they write no depth either.
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0.4f);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    // The software rasteriser splits a quadrilateral along one diagonal or
    // the other depending on what else shares its draw call, which shows
    // wherever corner colours differ. A stipple that keeps every pixel sends
    // every draw down the same path, so how sides are grouped into draws
    // cannot change the picture.
    GLubyte solid[128];
    std::memset(solid, 0xFF, sizeof solid);
    glPolygonStipple(solid);
    glEnable(GL_POLYGON_STIPPLE);
    // A new context has no texture bound and none of the meshes' lists.
    ResetBoundTexture();
    ForgetMeshLists();
    BuildFont(FONT_LIST_BASE);
}

ORVERENDER::~ORVERENDER()
{
    if (DrawingView.Camera == &Camera || (Eye && DrawingView.Camera == Eye))
        DrawingView = FRAMEVIEW();
    DeleteFont(FONT_LIST_BASE);
}

void ORVERENDER::SetClientSize(int width, int height)
{
    Width = width;
    Height = height;
}

void ORVERENDER::Draw()
{
    CAMERA& camera = Eye ? *Eye : Camera;
    camera.SetClientSize(Width, Height);
    glViewport(0, 0, Width, Height);
    DrawingView.Camera = &camera;
    DrawingView.Width = Width;
    DrawingView.Height = Height;

    const bool clipped = ClipWidth > 0 && ClipHeight > 0;
    if (clipped)
    {
        glEnable(GL_SCISSOR_TEST);
        glScissor(ClipX, ClipY, ClipWidth, ClipHeight);
    }
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-1.0, 1.0, -camera.Aspect, camera.Aspect, 1.0, 10000000.0);

    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const VECTOR3D& p = camera.Position;
    VECTOR3D at = p + camera.ViewDir;
    gluLookAt(p.x, p.y, p.z, at.x, at.y, at.z, camera.Up.x, camera.Up.y, camera.Up.z);

    BindTexture(0);
    if (!Eye)
        DrawAxes();

    ORVLEVEL* level = Level ? Level : TheLevel;
    if (level)
    {
        // The editor's view: every side and the markers, no viewer.
        const bool editing = !Eye;
        THING* viewer = editing ? nullptr : Viewer;
        if (Batched)
            DrawLevelBatched(*level, editing, editing, viewer, false, nullptr, editing ? Marked : nullptr);
        else
            DrawLevel(*level, editing, editing, viewer, false, nullptr, editing ? Marked : nullptr);
    }
    if (clipped)
        glDisable(GL_SCISSOR_TEST);
}

void ORVERENDER::DrawAxes()
{
    glBegin(GL_LINES);
    glColor3f(1, 0, 0);
    glVertex3f(-10000, 0, 0);
    glVertex3f(10000, 0, 0);
    glColor3f(0, 1, 0);
    glVertex3f(0, -10000, 0);
    glVertex3f(0, 10000, 0);
    glColor3f(0, 0, 1);
    glVertex3f(0, 0, -10000);
    glVertex3f(0, 0, 10000);
    glEnd();
}

bool ORVERENDER::SelectedSideBounds(const ORVLEVEL& level, int& x, int& y, int& width, int& height) const
{
    ORVLEVEL& l = const_cast<ORVLEVEL&>(level);
    const SEGMENT* segment = l.GetCurrentSegment();
    const VECTOR3D* corners = l.GetCurrentSideCorners();
    if (!segment || !corners || Width <= 0 || Height <= 0)
        return false;
    // The door's sliding corners, and the cross of half-size 5 around the
    // selected corner, can reach past the side itself.
    const VECTOR3D offset = level.DoorOffset(level.CurrentSegment, level.CurrentSide);
    VECTOR3D points[10];
    int n = 0;
    for (int k = 0; k < 4; ++k)
    {
        points[n++] = corners[k];
        points[n++] = corners[k] + offset;
    }
    if (const VECTOR3D* p = l.GetCurrentPointPtr())
    {
        points[n++] = *p + VECTOR3D(-5, -5, -5);
        points[n++] = *p + VECTOR3D(5, 5, 5);
    }
    float minX = 1e30f, minY = 1e30f, maxX = -1e30f, maxY = -1e30f;
    for (int i = 0; i < n; ++i)
    {
        // The view's frustum: x in [-1, 1] and y in [-Aspect, Aspect] at distance 1.
        VECTOR3D d = points[i] - Camera.Position;
        float z = Dot(d, Camera.ViewDir);
        if (!(z > 1.0f))
            return false;
        float sx = (Dot(d, Camera.Right) / z + 1.0f) * 0.5f * float(Width);
        float sy = (Dot(d, Camera.Up) / (z * Camera.Aspect) + 1.0f) * 0.5f * float(Height);
        minX = std::min(minX, sx), maxX = std::max(maxX, sx);
        minY = std::min(minY, sy), maxY = std::max(maxY, sy);
    }
    // A wide margin: the camera frame drifts from orthogonal, which the view
    // straightens and this estimate does not.
    const float margin = 8.0f + 0.02f * float(std::max(Width, Height));
    int x0 = std::max(0, int(std::floor(minX - margin)));
    int y0 = std::max(0, int(std::floor(minY - margin)));
    int x1 = std::min(Width, int(std::ceil(maxX + margin)));
    int y1 = std::min(Height, int(std::ceil(maxY + margin)));
    if (x1 <= x0 || y1 <= y0)
    {
        x0 = y0 = 0;
        x1 = y1 = 1; // wholly off screen: nothing of the side changes
    }
    x = x0, y = y0, width = x1 - x0, height = y1 - y0;
    return true;
}
