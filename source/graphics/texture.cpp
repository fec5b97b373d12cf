#include "graphics/texture.h"
#include "graphics/bitmap.h"

#include <cstring>

namespace {
TEXTUREBACKEND* Backend = nullptr;
}

void SetTextureBackend(TEXTUREBACKEND* backend)
{
    Backend = backend;
}

TEXTURE::TEXTURE(const char* fileName)
{
    if (Backend)
        GLName = Backend->Create(fileName);
    else
        CheckBitmapFile(fileName);
    std::strncpy(FileName, fileName, TEXTURE_NAME_SIZE - 1);
    FileName[TEXTURE_NAME_SIZE - 1] = 0;
}

TEXTURE::~TEXTURE()
{
    if (Backend)
        Backend->Destroy(GLName);
}

void TEXTURE::Bind()
{
    if (Backend)
        Backend->Bind(GLName);
}
