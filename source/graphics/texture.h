// A texture of the level or the editor: an OpenGL texture object and the
// bitmap file it came from. The OpenGL work is done by the backend the
// drawing layer installs; without one (command-line tool, core tests) a
// texture only checks that its bitmap exists.
#pragma once

#include <cstdint>

constexpr int TEXTURE_NAME_SIZE = 512;

class TEXTUREBACKEND
{
public:
    virtual ~TEXTUREBACKEND() = default;
    // Generates a texture object and loads the bitmap into it; returns its name.
    virtual uint32_t Create(const char* file) = 0;
    virtual void Destroy(uint32_t glName) = 0;
    virtual void Bind(uint32_t glName) = 0;
};

// Installs the backend (not owned); null removes it.
void SetTextureBackend(TEXTUREBACKEND* backend);

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
