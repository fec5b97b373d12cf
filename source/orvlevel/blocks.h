// Groups of segments handled as one: lifting them out of a level with what
// lies inside them, putting a copy onto any free side, moving, turning and
// mirroring them in place, block files, and carrying a texture over a flat
// stretch of walls.
//
// Every operation is all or nothing: it answers false and leaves the level
// untouched when it cannot be done whole (a table would overflow, a side is
// taken, a segment is broken). A list of segments names segment slots in
// ascending order without repeats; slots that hold no segment are ignored.
#pragma once

#include "orvlevel/level.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// A block lifted out of a level, numbered on its own: Corners index Points,
// Neighbours index Segments (-1 for a side that was linked outside the
// block, which becomes a wall if it was passable), a side's Texture indexes
// Textures. Positions stay where they were in the level.
struct LEVELBLOCK
{
    std::vector<VECTOR3D> Points;
    std::vector<SEGMENT> Segments;
    std::vector<std::string> Textures; // bitmap file names
    // The objects' file records without their table index: class name, size
    // and members, as the level file stores them.
    std::vector<std::vector<uint8_t>> Things;
    std::vector<STATICLIGHT> Lights;
    std::vector<SPECPOINT> SpecPoints;
    // The side that lands on the target side when the block is pasted.
    int32_t AnchorSegment = -1;
    int32_t AnchorSide = 0;

    bool Empty() const { return Segments.empty(); }
};

// Copies the segments, their points, and the objects, lights and special
// points inside them. The anchor side must belong to one of the segments and
// must not be linked to another of them.
bool CopyBlock(const ORVLEVEL& level, std::span<const int32_t> segments, int32_t anchorSegment,
               int32_t anchorSide, LEVELBLOCK& block);

// Puts a copy of the block onto a side without a neighbour: the anchor side
// takes that side's four points (side corner 3 - shift of the anchor meets
// corner 0 of the side, as joining matches them), the rest of the block
// follows by the rotation and translation that best fit the anchor onto the
// side, on the far side from the side's segment, and the two sides are
// linked. Textures are matched by file name and loaded when missing; a
// single-player start is left out when the level already has one. The new
// segments' indices go to `pasted`, in block order.
bool PasteBlock(ORVLEVEL& level, const LEVELBLOCK& block, int32_t segment, int32_t side, int32_t shift,
                std::vector<int32_t>* pasted = nullptr);

// Deletes the segments as DeleteSegment deletes each one.
bool DeleteBlock(ORVLEVEL& level, std::span<const int32_t> segments);

// Moves every point the segments use, and the objects, lights and special
// points inside them; segments sharing those points stretch to follow.
bool MoveBlock(ORVLEVEL& level, std::span<const int32_t> segments, VECTOR3D offset);
// Turns the same (axis 0, 1, 2 for x, y, z; right-handed degrees) about the
// centre of the box around the segments' points.
bool RotateBlock(ORVLEVEL& level, std::span<const int32_t> segments, int axis, double degrees);
// Mirrors the same across the plane through that centre across the axis;
// each segment's corners are renumbered, with its sides' data, so that every
// side still faces into its segment.
bool MirrorBlock(ORVLEVEL& level, std::span<const int32_t> segments, int axis);

// A block file is a level file holding the block alone, numbered from 0 as in
// the block; its level name records the anchor ("BLOKK segment side").
std::vector<uint8_t> BlockImage(const LEVELBLOCK& block);
// False after a message when the file cannot be written or read (or holds
// no segment).
bool SaveBlock(const LEVELBLOCK& block, const char* fileName);
bool LoadBlock(const char* fileName, LEVELBLOCK& block);

// Gives the side's texture to every textured wall reachable from it through
// shared edges whose plane is within 5 degrees of its own, carrying the
// texture coordinates across each edge as FitTexture does. False when the
// side is missing, passable or untextured.
bool SpreadTexture(ORVLEVEL& level, int32_t segment, int32_t side);
