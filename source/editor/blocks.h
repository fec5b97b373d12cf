// Working in blocks: the marked segments beside the single selection, the
// block clipboard, and the commands of the "Blokk" menu. Every command that
// cannot be done whole gives the information beep and changes nothing; each
// one that changes the level is one step of the history, as every command is.
#pragma once

#include "orvlevel/blocks.h"

#include <cstdint>
#include <string>
#include <vector>

class ORVEDITOR;
struct ORVECOMMANDENTRY;

enum ORVEBLOCKCOMMAND
{
    CM_MARKSEGMENT = 12000, // the selected segment
    CM_MARKALL = 12001,
    CM_UNMARKALL = 12002,
    CM_COPYBLOCK = 12003,
    CM_PASTEBLOCK = 12004,
    CM_DELETEBLOCK = 12005,
    CM_BLOCKXPLUS = 12006,
    CM_BLOCKXMINUS = 12007,
    CM_BLOCKYPLUS = 12008,
    CM_BLOCKYMINUS = 12009,
    CM_BLOCKZPLUS = 12010,
    CM_BLOCKZMINUS = 12011,
    CM_ROTATEBLOCKX = 12012, // a quarter turn
    CM_ROTATEBLOCKY = 12013,
    CM_ROTATEBLOCKZ = 12014,
    CM_MIRRORBLOCKX = 12015,
    CM_MIRRORBLOCKY = 12016,
    CM_MIRRORBLOCKZ = 12017,
    CM_SPREADTEXTURE = 12018,
    // File dialogs: the window's.
    CM_SAVEBLOCK = 12019,
    CM_LOADBLOCK = 12020,
};

// Distance of one block-move command.
constexpr float BLOCK_STEP = 10.0f;

// Editor state, not saved with the level: one flag per segment slot.
class ORVEMARKS
{
public:
    ORVEMARKS() : Flag(MAX_SEGMENTS, 0) {}

    bool Has(int32_t segment) const { return segment >= 0 && segment < MAX_SEGMENTS && Flag[size_t(segment)]; }
    void Set(int32_t segment, bool on);
    void Clear();
    // Forgets the marks of slots that hold no segment (any more).
    void Prune(const ORVLEVEL& level);
    // The marked slots in ascending order.
    std::vector<int32_t> List() const;
    int Count() const { return N; }
    // MAX_SEGMENTS bytes, nonzero for a marked slot; stays where it is.
    const uint8_t* Flags() const { return Flag.data(); }
    // Advances with every change of the marks, so views know to redraw.
    uint64_t Version() const { return Changes; }

private:
    std::vector<uint8_t> Flag;
    int N = 0;
    uint64_t Changes = 0;
};

// The editor's block commands in id order (the ones without a file dialog),
// for the controller's command table; null for any other id.
const ORVECOMMANDENTRY* FindBlockCommand(int id);

// Each answers whether it was done; a refusal has beeped.
bool BlockToggleMark(ORVEDITOR& editor, int32_t segment);
bool BlockMarkAll(ORVEDITOR& editor);
bool BlockUnmarkAll(ORVEDITOR& editor);
// Shift + left click: the segment under the cursor is marked or unmarked; the
// selection stays.
bool BlockMarkClicked(ORVEDITOR& editor, int x, int y);
bool BlockCopy(ORVEDITOR& editor);
bool BlockPaste(ORVEDITOR& editor);
bool BlockDelete(ORVEDITOR& editor);
bool BlockMove(ORVEDITOR& editor, VECTOR3D offset);
bool BlockRotate(ORVEDITOR& editor, int axis, double degrees);
bool BlockMirror(ORVEDITOR& editor, int axis);
bool BlockSpreadTexture(ORVEDITOR& editor);

enum BLOCKFILERESULT
{
    BLOCKFILE_DONE,
    BLOCKFILE_REFUSED,  // nothing to save: beeped
    BLOCKFILE_FAILED,   // the file could not be written or read: a message said why
};
// The marked segments, anchored at the selected side, as a block file.
BLOCKFILERESULT BlockSave(ORVEDITOR& editor, const std::string& path);
// A block file into the clipboard.
BLOCKFILERESULT BlockLoad(ORVEDITOR& editor, const std::string& path);

// The axis letter of a script line or a menu item: 0, 1, 2, or -1.
int BlockAxis(char letter);
