#include "platform/pages.h"

#include <new>
#include <sys/mman.h>

void* AllocatePages(size_t bytes)
{
    void* block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED)
        throw std::bad_alloc();
    return block;
}

void FreePages(void* block, size_t bytes)
{
    if (block)
        munmap(block, bytes);
}
