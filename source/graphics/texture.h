// A texture of the level or the editor: an OpenGL texture object and the
// bitmap file it came from. The OpenGL work goes through the drawing seam;
// without a drawing layer (command-line tool, core tests) a texture only
// checks that its bitmap exists.
#pragma once

#include <cstdint>

constexpr int TEXTURE_NAME_SIZE = 512;

class TEXTURE
{
public:
    uint32_t GLName = 0;
    char FileName[TEXTURE_NAME_SIZE] = {}; // code page 1250, NUL-terminated

    explicit TEXTURE(const char* fileName);
    virtual ~TEXTURE();
    TEXTURE(const TEXTURE&) = delete;
    TEXTURE& operator=(const TEXTURE&) = delete;

    void Bind();
};
