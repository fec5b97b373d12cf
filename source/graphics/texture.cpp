#include "graphics/texture.h"
#include "graphics/bitmap.h"
#include "graphics/drawing.h"

#include <cstring>

TEXTURE::TEXTURE(const char* fileName)
{
    if (Drawing().CreateTexture)
        GLName = Drawing().CreateTexture(fileName);
    else
        CheckBitmapFile(fileName);
    std::strncpy(FileName, fileName, TEXTURE_NAME_SIZE - 1);
    FileName[TEXTURE_NAME_SIZE - 1] = 0;
}

TEXTURE::~TEXTURE()
{
    if (Drawing().DeleteTexture)
        Drawing().DeleteTexture(GLName);
}

void TEXTURE::Bind()
{
    if (Drawing().BindTexture)
        Drawing().BindTexture(GLName);
}
