#include "render/view.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/gltexture.h"

#include "orvlevel/level.h"

#include <GL/gl.h>
#include <GL/glu.h>

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
    if (DrawingView.Camera == &Camera)
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
    Camera.SetClientSize(Width, Height);
    glViewport(0, 0, Width, Height);
    DrawingView.Camera = &Camera;
    DrawingView.Width = Width;
    DrawingView.Height = Height;

    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-1.0, 1.0, -Camera.Aspect, Camera.Aspect, 1.0, 10000000.0);

    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const VECTOR3D& p = Camera.Position;
    VECTOR3D at = p + Camera.ViewDir;
    gluLookAt(p.x, p.y, p.z, at.x, at.y, at.z, Camera.Up.x, Camera.Up.y, Camera.Up.z);

    BindTexture(0);
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

    ORVLEVEL* level = Level ? Level : TheLevel;
    if (!level)
        return;
    if (Batched)
        DrawLevelBatched(*level, true, true, nullptr, false, nullptr);
    else
        DrawLevel(*level, true, true, nullptr, false, nullptr);
}
