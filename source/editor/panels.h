// What the editor's side panels do without a window: the level check kept
// up to date with the level, the list of placed objects, and pointing the
// camera at what the designer chose in either, or at a stored view.
#pragma once

#include "math/camera.h"
#include "orvlevel/levelcheck.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class ORVLEVEL;

// The level check of one revision of the level.
class CHECKCACHE
{
public:
    // Whether the level changed since the last Refresh (or there was none).
    bool Due(const ORVLEVEL& level) const;
    // Checks the level; false when the problems are the ones already listed.
    bool Refresh(const ORVLEVEL& level);
    const std::vector<LEVELPROBLEM>& Problems() const { return Found; }

private:
    const ORVLEVEL* Level = nullptr;
    uint64_t Revision = 0;
    std::vector<LEVELPROBLEM> Found;
};

enum LEVELOBJECTKIND
{
    OBJ_THING,      // ships and items
    OBJ_LIGHT,
    OBJ_SPECPOINT,  // start points
};

struct LEVELOBJECT
{
    int Kind = OBJ_THING;
    int32_t Index = -1;
    VECTOR3D Position;
    std::string Text; // one line, Hungarian: what, its index and position
};

// Every thing, light and special point, in that order, each by slot.
std::vector<LEVELOBJECT> ListObjects(const ORVLEVEL& level);
// Empties the object's slot; false when the slot is empty by now.
bool DeleteObject(ORVLEVEL& level, int kind, int32_t index);

// Turns the camera where it stands to face `target`, keeping its roll as
// far as it can; nothing happens when the target is where the camera is.
void LookAt(CAMERA& camera, VECTOR3D target);
// Puts the camera in the middle of the segment facing the side; false when
// the segment or a corner of it is missing.
bool LookAtSide(CAMERA& camera, const ORVLEVEL& level, int32_t segment, int32_t side);
// Brings the camera close to `target` and turns it there: back along the line
// of sight it came from, stopping inside the level when the target is in it.
void FlyTo(CAMERA& camera, const ORVLEVEL& level, VECTOR3D target);
// Where a problem of the check is that names no segment: its thing, light,
// special point or point, else nothing.
std::optional<VECTOR3D> ProblemObjectPosition(const ORVLEVEL& level, const LEVELPROBLEM& problem);

// A camera as twelve numbers (position, view direction, up, right) in the C
// locale, and back; false (camera unchanged) for a text that is not one.
std::string CameraText(const CAMERA& camera);
bool CameraFromText(const std::string& text, CAMERA& camera);
