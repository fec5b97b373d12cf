#include "render/glthings.h"
#include "render/glcontext.h"
#include "render/gltexture.h"

#include "graphics/drawing.h"
#include "graphics/texture.h"
#include "graphics/trimesh.h"
#include "math/camera.h"
#include "math/geometry.h"
#include "math/random.h"
#include "orvlevel/level.h"
#include "platform/cp1250.h"
#include "platform/platform.h"
#include "things/effects.h"
#include "things/spaceship.h"
#include "things/thingmeshes.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

FRAMEVIEW DrawingView;

namespace {

DRAWING GLDrawing;

void DrawExplosion(const EXPLOSION& e)
{
    const CAMERA* camera = DrawingView.Camera;
    VECTOR3D U = camera ? camera->Up : VECTOR3D(0, 1, 0);
    VECTOR3D R = camera ? camera->Right : VECTOR3D(1, 0, 0);
    BindTexture(e.texture ? e.texture->GLName : 0);
    // A record with no size (never written by this program) shows unfaded.
    float life = e.maxSize > 0.0f ? e.radius / e.maxSize : 0.0f;
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glColor4f(1, 1, 1, 1 - life);
    glDepthMask(GL_FALSE);
    glAlphaFunc(GL_GEQUAL, 0.5f - life / 2);
    float r = e.radius;
    VECTOR3D C = e.centre;
    VECTOR3D corners[4] = {C + R * r - U * r, C + R * r + U * r, C - R * r + U * r, C - R * r - U * r};
    const float tex[4][2] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
    glBegin(GL_QUADS);
    for (int k = 0; k < 4; ++k)
    {
        glTexCoord2f(tex[k][0], tex[k][1]);
        glVertex3f(corners[k].x, corners[k].y, corners[k].z);
    }
    glEnd();
    glPopAttrib();
}

void DrawSpark(const SPARK& s)
{
    // A negative size would never find its random offset.
    if (!(s.size >= 0.0f))
        return;
    long n = LRand() % 5;
    for (long i = 0; i < n; ++i)
        DrawSparkLine(s.position, s.position + THING::RandomOffset(s.size), 1.0f);
}

void CockpitDrawing(SPACESHIP& ship)
{
    DrawCockpit(ship);
}

std::string Cp(const char* utf8)
{
    return Utf8ToCp1250(utf8);
}

// One cockpit bar growing upward from y = 100 between x0 and x1.
void DrawBar(float value, int32_t shipLevel, float x0, float x1)
{
    float H = 25.0f * float(shipLevel) + 75.0f;
    RGBA c = BarColour(value / H, 0.3f);
    glColor4f(c.r, c.g, c.b, c.a);
    float h = 2.0f * std::min(value, H);
    float t = 100.0f - h / (0.25f * float(shipLevel) + 0.75f);
    glBegin(GL_QUADS);
    glVertex2f(x0, t);
    glVertex2f(x1, t);
    glVertex2f(x1, 100);
    glVertex2f(x0, 100);
    glEnd();
}

} // namespace

void InstallGLDrawing()
{
    TEXTURE* explosion = GLDrawing.ExplosionTexture;
    GLDrawing = DRAWING();
    GLDrawing.CreateTexture = CreateGLTexture;
    GLDrawing.DeleteTexture = DeleteGLTexture;
    GLDrawing.BindTexture = BindTexture;
    GLDrawing.DrawMesh = DrawMesh;
    GLDrawing.DrawExplosion = DrawExplosion;
    GLDrawing.DrawSpark = DrawSpark;
    GLDrawing.DrawCockpit = CockpitDrawing;
    GLDrawing.ExplosionTexture = explosion;
    SetDrawing(&GLDrawing);
}

void UninstallGLDrawing()
{
    SetDrawing(nullptr);
}

void SetExplosionTexture(TEXTURE* texture)
{
    GLDrawing.ExplosionTexture = texture;
}

uint32_t CreateGLTexture(const char* file)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    LoadTexture(file, name, GL_LINEAR, GL_REPEAT);
    return name;
}

void DeleteGLTexture(uint32_t name)
{
    GLuint n = name;
    glDeleteTextures(1, &n);
}

void DrawMesh(TRIMESH& mesh, VECTOR3D P, VECTOR3D Z, VECTOR3D Y, VECTOR3D X, int32_t, VECTOR3D ambient)
{
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    if (const CAMERA* c = DrawingView.Camera)
    {
        VECTOR3D at = c->Position + c->ViewDir;
        gluLookAt(c->Position.x, c->Position.y, c->Position.z, at.x, at.y, at.z, c->Up.x, c->Up.y, c->Up.z);
    }
    glTranslatef(P.x, P.y, P.z);
    const GLfloat frame[16] = {X.x, X.y, X.z, 0, Y.x, Y.y, Y.z, 0, Z.x, Z.y, Z.z, 0, 0, 0, 0, 1};
    glMultMatrixf(frame);

    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_ENABLE_BIT | GL_POLYGON_BIT);
    glCullFace(GL_FRONT);
    glEnable(GL_LIGHTING);
    glEnable(GL_COLOR_MATERIAL);
    const GLfloat light[4] = {ambient.x, ambient.y, ambient.z, 1.0f};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, light);

    if (!mesh.hasList || mesh.dirty)
    {
        if (!mesh.hasList)
        {
            for (int32_t n = 1; n <= 999; ++n)
                if (!glIsList(GLuint(n)))
                {
                    mesh.listId = n;
                    break;
                }
            mesh.hasList = true;
        }
        glNewList(GLuint(mesh.listId), GL_COMPILE_AND_EXECUTE);
        glDisable(GL_TEXTURE_2D);
        glBegin(GL_TRIANGLES);
        for (int i = 0; i < TRIMESH_MAX_TRIANGLES; ++i)
        {
            const TRIANGLE* t = mesh.triangles[i];
            if (!t)
                continue;
            VECTOR3D colour = mesh.SurfaceColour(t->surface);
            glNormal3f(t->normal.x, t->normal.y, t->normal.z);
            glColor3f(colour.x, colour.y, colour.z);
            for (int32_t v : t->vertex)
            {
                const VECTOR3D& p = *mesh.vertices[v];
                glVertex3f(p.x, p.y, p.z);
            }
        }
        glEnd();
        glEndList();
        ORV_ASSERT(glGetError()==GL_NO_ERROR, "source/trimesh");
        mesh.dirty = false;
    }
    else
    {
        glCallList(GLuint(mesh.listId));
        ORV_ASSERT(glGetError()==GL_NO_ERROR, "source/trimesh");
    }

    glPopAttrib();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
}

void ForgetMeshLists()
{
    for (TRIMESH* m : {ThingMeshes.Ship, ThingMeshes.LaserShot, ThingMeshes.Tempest, ThingMeshes.ShipLevel,
                       ThingMeshes.LaserBoost, ThingMeshes.Energy, ThingMeshes.Shield})
        if (m)
        {
            m->hasList = false;
            m->dirty = true;
        }
}

void DrawSparkLine(VECTOR3D a, VECTOR3D b, float stepScale)
{
    constexpr float pi = 3.1415926536f;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_TEXTURE_2D);
    glColor3f(1, 1, 1);
    float dist = Length(a - b);
    // Each step gains at least half a unit on b; the cap only guards
    // against positions that are not numbers.
    for (int steps = 0; steps < 100000; ++steps)
    {
        VECTOR3D u = (b - a) / dist;
        VECTOR3D j(0, 0, -0.5f);
        float yaw = float(LRand() % 360) * pi / 180.0f;
        float pitch = float(LRand() % 181 - 90) * pi / 180.0f;
        Rotate2D(&j.y, &j.z, j.y, j.z, pitch);
        Rotate2D(&j.x, &j.z, j.x, j.z, yaw);
        VECTOR3D step = 1.0f / stepScale < dist ? u * (1.0f / stepScale) + j : b - a;
        glBegin(GL_LINES);
        glVertex3f(a.x, a.y, a.z);
        glVertex3f(a.x + step.x, a.y + step.y, a.z + step.z);
        glEnd();
        a += step;
        dist = Length(a - b);
        if (dist < 0.5f)
            break;
    }
    glPopAttrib();
}

void DrawCockpit(SPACESHIP& ship)
{
    int hw = DrawingView.Width / 2, hh = DrawingView.Height / 2;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_2D);
    glMatrixMode(GL_PROJECTION);
    // Display coordinates: origin at the centre, y downward, one unit a pixel.
    glOrtho(-hw, hw, hh, -hh, 0.0, 10000.0);

    // Crosshair: red at the centre through green to blue outside.
    const float arms[4][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    glBegin(GL_LINES);
    for (const auto& d : arms)
    {
        glColor3f(1, 0, 0);
        glVertex2f(3 * d[0], 3 * d[1]);
        glColor3f(0, 1, 0);
        glVertex2f(7 * d[0], 7 * d[1]);
    }
    for (const auto& d : arms)
    {
        glColor3f(0, 1, 0);
        glVertex2f(7 * d[0], 7 * d[1]);
        glColor3f(0, 0, 1);
        glVertex2f(11 * d[0], 11 * d[1]);
    }
    glEnd();

    // The side the next missile leaves from.
    float s = ship.launchSide ? -1.0f : 1.0f;
    glBegin(GL_LINE_STRIP);
    glColor3f(1, 0, 0);
    glVertex2f(-25 * s, -5);
    glColor3f(0, 1, 0);
    glVertex2f(-20 * s, 0);
    glColor3f(0, 0, 1);
    glVertex2f(-25 * s, 5);
    glEnd();

    glColor3f(0, 0, 1);
    glBegin(GL_LINE_STRIP);
    glVertex2f(-80, -101);
    glVertex2f(-100, -101);
    glVertex2f(-100, 101);
    glVertex2f(-80, 101);
    glEnd();
    glBegin(GL_LINE_STRIP);
    glVertex2f(80, -101);
    glVertex2f(101, -101);
    glVertex2f(101, 101);
    glVertex2f(80, 101);
    glEnd();

    char text[160];
    DrawBar(ship.shield, ship.shipLevel, -80, -100);
    glColor4f(0, 1, 0, 0.5f);
    CFormat(text, sizeof text, "%-0.1f", double(ship.shield));
    Print2D(-100, 115, text, FONT_LIST_BASE);
    Print2D(-100, 145, ship.PrimaryWeaponName(), FONT_LIST_BASE);

    DrawBar(ship.energy, ship.shipLevel, 100, 80);
    glColor4f(0, 1, 0, 0.5f);
    CFormat(text, sizeof text, "%-0.1f", double(ship.energy));
    Print2D(80, 115, text, FONT_LIST_BASE);
    CFormat(text, sizeof text, "2nd: %d", int(ship.tempestCount));
    Print2D(80, 130, text, FONT_LIST_BASE);
    Print2D(80, 145, ship.SecondaryWeaponName(), FONT_LIST_BASE);
    CFormat(text, sizeof text, "%-0.0f.-", double(ship.money));
    Print2D(80, -200, text, FONT_LIST_BASE);
    CFormat(text, sizeof text, "%d. szintű a hajó.", int(ship.shipLevel));
    Print2D(-80, -200, Cp(text).c_str(), FONT_LIST_BASE);

    DrawMessages(ship);
    DrawShop(ship);

    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glPopAttrib();
}

void DrawMessages(const SPACESHIP& ship)
{
    for (int i = 0; i < SHIP_MESSAGES; ++i)
    {
        // A line read from a file may fill its field without a terminator.
        char line[SHIP_MESSAGE_SIZE + 1] = {};
        std::memcpy(line, ship.messages[i], strnlen(ship.messages[i], SHIP_MESSAGE_SIZE));
        Print2D(0, float(15 * i - 350), line, FONT_LIST_BASE);
    }
}

void DrawShop(SPACESHIP& ship)
{
    const ORVLEVEL* level = ship.Level;
    int32_t seg = ship.segment;
    const SEGMENT* s = level && level->Segments && seg >= 0 && seg < MAX_SEGMENTS ? level->Segments[seg] : nullptr;
    if (!s || s->Type != SEGTYPE_SUPPORT)
    {
        ship.shopState = -1;
        return;
    }
    char text[160];
    switch (ship.shopState)
    {
    case -1:
        Print2D(-100, 180, Cp("Ezen a helyen szerezhetsz be hajó cuccokat.").c_str(), FONT_LIST_BASE);
        Print2D(-100, 195, Cp("Nyomj 'b'-t a menühöz.").c_str(), FONT_LIST_BASE);
        break;
    case 0:
        Print2D(-100, 180, Cp("1. Elsődleges fegyverek").c_str(), FONT_LIST_BASE);
        Print2D(-100, 195, Cp("2. Másodlagos fegyverek").c_str(), FONT_LIST_BASE);
        Print2D(-100, 210, Cp("3. Taktikai fegyverek").c_str(), FONT_LIST_BASE);
        break;
    case 1:
        CFormat(text, sizeof text, "1. Lézer %-0.0f.-", double(ship.LaserPrice()));
        Print2D(-100, 180, Cp(text).c_str(), FONT_LIST_BASE);
        break;
    default:
        break;
    }
}
