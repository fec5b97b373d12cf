// Helpers the level tests share.
#pragma once

#include "orvlevel/level.h"

// An unjoined copy of the default cube (segment 0) moved by `offset`, on
// points of its own; its index.
inline int AddCubeCopy(ORVLEVEL& level, VECTOR3D offset, int32_t type = SEGTYPE_NORMAL)
{
    SEGMENT s = *level.Segments[0];
    for (int i = 0; i < 8; ++i)
        s.Corners[i] = level.Add(DefaultCubeCorners[i] + offset);
    s.Type = type;
    return level.Add(&s);
}
