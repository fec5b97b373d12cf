#include "graphics/drawing.h"

namespace {
const DRAWING NoDrawing;
const DRAWING* Current = &NoDrawing;
} // namespace

void SetDrawing(const DRAWING* drawing)
{
    Current = drawing ? drawing : &NoDrawing;
}

const DRAWING& Drawing()
{
    return *Current;
}
