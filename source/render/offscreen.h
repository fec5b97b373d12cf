// An OpenGL context that needs no window system: EGL on Mesa's surfaceless
// platform (software rendering with llvmpipe where there is no GPU), a
// compatibility-profile context and a pbuffer with colour and depth, for
// headless rendering, the tests and the benchmarks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class OFFSCREENCONTEXT
{
public:
    // Creates the context with a width x height drawable and makes it
    // current. On failure Ok() is false and Error() says why.
    OFFSCREENCONTEXT(int width, int height);
    ~OFFSCREENCONTEXT();
    OFFSCREENCONTEXT(const OFFSCREENCONTEXT&) = delete;
    OFFSCREENCONTEXT& operator=(const OFFSCREENCONTEXT&) = delete;

    bool Ok() const { return Context != nullptr; }
    const std::string& Error() const { return Message; }
    int Width() const { return W; }
    int Height() const { return H; }

    void MakeCurrent();
    // Waits for drawing to finish (there is nothing to show).
    void Swap();

    // The drawable's pixels as red, green, blue bytes, top row first.
    std::vector<uint8_t> ReadPixels() const;

private:
    void* Display = nullptr;
    void* Config = nullptr;
    void* Surface = nullptr;
    void* Context = nullptr;
    int W = 0, H = 0;
    std::string Message;
};

// Writes red, green, blue bytes (top row first) as an 8-bit RGB PNG file;
// false with a reason in *error when it cannot.
bool WritePng(const std::string& path, int width, int height, const std::vector<uint8_t>& rgb, std::string* error);
