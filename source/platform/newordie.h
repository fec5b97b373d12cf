// Running out of memory ends the program with a text naming the operation.
#pragma once

#include "platform/platform.h"

#include <new>

template <class T, class... ARGS>
T* NewOrDie(const char* text, ARGS&&... args)
{
    try
    {
        return new T(static_cast<ARGS&&>(args)...);
    }
    catch (const std::bad_alloc&)
    {
        FatalMessage(text);
    }
}
