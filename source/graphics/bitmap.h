// Reading uncompressed Windows bitmaps (8 and 24 bits per pixel) into RGBA.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr size_t PIXEL_BUFFER_SIZE = 3000000; // 750,000 RGBA pixels

// The staging buffer every bitmap is decoded into before upload.
extern uint8_t PixelBuffer[PIXEL_BUFFER_SIZE];

// Decodes the file into out (at most capacity bytes, 4 per pixel), pixels whose
// colour equals the key get alpha 0. Returns the header's image-size field, or
// 0 for an unsupported depth or an image larger than the buffer. A file that
// cannot be opened ends the program with "%s nem található!\n" (status 0).
uint32_t LoadBMP(uint8_t* out, size_t capacity, const char* file, int32_t size[2],
                 float keyR, float keyG, float keyB);

// The not-found rule alone: ends the program as LoadBMP does when the file
// cannot be opened for reading and writing; otherwise returns.
void CheckBitmapFile(const char* file);
