#include "render/gltexture.h"

#include "graphics/bitmap.h"

#include <GL/gl.h>

uint32_t BoundTexture = 0;

void LoadTexture(const char* file, uint32_t name, int filter, int wrap)
{
    int32_t size[2] = {0, 0};
    if (LoadBMP(PixelBuffer, sizeof PixelBuffer, file, size, 0.0f, 0.0f, 0.0f) == 0)
        return;
    // A header without pixels has nothing to upload.
    if (size[0] <= 0 || size[1] <= 0)
        return;
    glBindTexture(GL_TEXTURE_2D, name);
    glTexImage2D(GL_TEXTURE_2D, 0, 4, size[0], size[1], 0, GL_RGBA, GL_UNSIGNED_BYTE, PixelBuffer);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    // A size OpenGL refuses leaves the texture without an image; its error
    // must not surface in the next drawing's check.
    for (int i = 0; i < 8 && glGetError() != GL_NO_ERROR; ++i)
    {
    }
}

void BindTexture(uint32_t name)
{
    if (name != BoundTexture)
    {
        glBindTexture(GL_TEXTURE_2D, name);
        BoundTexture = name;
    }
}

void ResetBoundTexture()
{
    glBindTexture(GL_TEXTURE_2D, 0);
    BoundTexture = 0;
}
