// Drawing a level into the current OpenGL context, once per frame, after the
// view has set the projection, the camera and its axes.
//
// Expected state on entry (the view sets it once): 2D texturing, depth test
// and back-face culling on, blending and the alpha test as the view has them.
#pragma once

#include <cstdint>

class ORVLEVEL;
class THING;
struct SEGMENT;

// Every side of every segment as a textured quadrilateral in its corner
// colours (doors moved by their opening, the selected side at half
// brightness while the blink is on), then the objects, the light and
// special-point markers and the selection's cross and labels.
//
//   drawUntextured   sides without texture drawn with the level's
//                    invisible-side texture (false: skipped)
//   drawMarkers      light and special-point boxes and labels
//   viewer           an object of the level that is not drawn; its cockpit
//                    is drawn instead
//   highlight        tints highlightSegment and its neighbours
//   marked           null, or one byte per segment slot (MAX_SEGMENTS):
//                    the sides of a slot whose byte is nonzero are drawn
//                    with a faint tint, under the selection's blink
//
// A level whose display list has not been invalidated records its static
// sides into a list at the first call and replays it afterwards, drawing only
// doors directly; changes to other sides then do not show.
void DrawLevel(ORVLEVEL& level, bool drawUntextured, bool drawMarkers, THING* viewer, bool highlight,
               SEGMENT* highlightSegment, const uint8_t* marked = nullptr);

// The same frame, pixel for pixel and with the same state left behind,
// drawn faster: sides wholly outside the view are left out and the rest go
// to OpenGL as vertex arrays, one draw per run of sides that share a
// texture, in the same order. Nothing is cached, so every change shows in
// the next frame. Falls back to DrawLevel while the level's display list is
// in use, and for one frame after a texture upload left the binding cache
// out of step with OpenGL. Returns how many sides it sent to OpenGL, or -1
// when it fell back.
int DrawLevelBatched(ORVLEVEL& level, bool drawUntextured, bool drawMarkers, THING* viewer, bool highlight,
                     SEGMENT* highlightSegment, const uint8_t* marked = nullptr);

// Deletes the level's display list, if it has one, and switches recording
// off for good: from then on every side is drawn in every frame.
void InvalidateDisplayList(ORVLEVEL& level);
