#include "editor/blocks.h"

#include "editor/controller.h"
#include "platform/platform.h"

// ---------------------------------------------------------------------------
// Marks

void ORVEMARKS::Set(int32_t segment, bool on)
{
    if (segment < 0 || segment >= MAX_SEGMENTS || bool(Flag[size_t(segment)]) == on)
        return;
    Flag[size_t(segment)] = on;
    N += on ? 1 : -1;
    ++Changes;
}

void ORVEMARKS::Clear()
{
    if (N == 0)
        return;
    std::fill(Flag.begin(), Flag.end(), 0);
    N = 0;
    ++Changes;
}

void ORVEMARKS::Prune(const ORVLEVEL& level)
{
    if (N == 0)
        return;
    for (int32_t s = 0; s < MAX_SEGMENTS; ++s)
        if (Flag[size_t(s)] && (!level.Segments || s >= level.SegmentsEnd() || !level.Segments[s]))
            Set(s, false);
}

std::vector<int32_t> ORVEMARKS::List() const
{
    std::vector<int32_t> list;
    list.reserve(size_t(N));
    for (int32_t s = 0; s < MAX_SEGMENTS && int(list.size()) < N; ++s)
        if (Flag[size_t(s)])
            list.push_back(s);
    return list;
}

// ---------------------------------------------------------------------------
// Commands

namespace {

bool Refuse()
{
    InfoBeep();
    return false;
}

bool Done(bool ok)
{
    return ok || Refuse();
}

ORVEMARKS& Marks(ORVEDITOR& e)
{
    e.Document.Marks.Prune(e.Level());
    return e.Document.Marks;
}

// The marked segments, or none (and a beep).
std::vector<int32_t> Marked(ORVEDITOR& e)
{
    std::vector<int32_t> list = Marks(e).List();
    if (list.empty())
        InfoBeep();
    return list;
}

bool CopyMarked(ORVEDITOR& e, LEVELBLOCK& block)
{
    ORVLEVEL& level = e.Level();
    const std::vector<int32_t> list = Marks(e).List();
    return Done(level.GetCurrentSide() && e.Document.Marks.Has(level.CurrentSegment) &&
                CopyBlock(level, list, level.CurrentSegment, level.CurrentSide, block));
}

const ORVECOMMANDENTRY BlockCommands[] = {
    {CM_MARKSEGMENT, [](ORVEDITOR& e) { BlockToggleMark(e, e.Level().GetCurrentSegment() ? e.Level().CurrentSegment : -1); }},
    {CM_MARKALL, [](ORVEDITOR& e) { BlockMarkAll(e); }},
    {CM_UNMARKALL, [](ORVEDITOR& e) { BlockUnmarkAll(e); }},
    {CM_COPYBLOCK, [](ORVEDITOR& e) { BlockCopy(e); }},
    {CM_PASTEBLOCK, [](ORVEDITOR& e) { BlockPaste(e); }},
    {CM_DELETEBLOCK, [](ORVEDITOR& e) { BlockDelete(e); }},
    {CM_BLOCKXPLUS, [](ORVEDITOR& e) { BlockMove(e, VECTOR3D(BLOCK_STEP, 0, 0)); }},
    {CM_BLOCKXMINUS, [](ORVEDITOR& e) { BlockMove(e, VECTOR3D(-BLOCK_STEP, 0, 0)); }},
    {CM_BLOCKYPLUS, [](ORVEDITOR& e) { BlockMove(e, VECTOR3D(0, BLOCK_STEP, 0)); }},
    {CM_BLOCKYMINUS, [](ORVEDITOR& e) { BlockMove(e, VECTOR3D(0, -BLOCK_STEP, 0)); }},
    {CM_BLOCKZPLUS, [](ORVEDITOR& e) { BlockMove(e, VECTOR3D(0, 0, BLOCK_STEP)); }},
    {CM_BLOCKZMINUS, [](ORVEDITOR& e) { BlockMove(e, VECTOR3D(0, 0, -BLOCK_STEP)); }},
    {CM_ROTATEBLOCKX, [](ORVEDITOR& e) { BlockRotate(e, 0, 90); }},
    {CM_ROTATEBLOCKY, [](ORVEDITOR& e) { BlockRotate(e, 1, 90); }},
    {CM_ROTATEBLOCKZ, [](ORVEDITOR& e) { BlockRotate(e, 2, 90); }},
    {CM_MIRRORBLOCKX, [](ORVEDITOR& e) { BlockMirror(e, 0); }},
    {CM_MIRRORBLOCKY, [](ORVEDITOR& e) { BlockMirror(e, 1); }},
    {CM_MIRRORBLOCKZ, [](ORVEDITOR& e) { BlockMirror(e, 2); }},
    {CM_SPREADTEXTURE, [](ORVEDITOR& e) { BlockSpreadTexture(e); }},
};

} // namespace

const ORVECOMMANDENTRY* FindBlockCommand(int id)
{
    for (const ORVECOMMANDENTRY& c : BlockCommands)
        if (c.Id == id)
            return &c;
    return nullptr;
}

bool BlockToggleMark(ORVEDITOR& e, int32_t segment)
{
    ORVEMARKS& marks = Marks(e);
    const ORVLEVEL& level = e.Level();
    if (segment < 0 || segment >= level.SegmentsEnd() || !level.Segments[segment])
        return Refuse();
    marks.Set(segment, !marks.Has(segment));
    return true;
}

bool BlockMarkAll(ORVEDITOR& e)
{
    ORVEMARKS& marks = Marks(e);
    const ORVLEVEL& level = e.Level();
    for (int32_t s = 0; level.Segments && s < level.SegmentsEnd(); ++s)
        if (level.Segments[s])
            marks.Set(s, true);
    return true;
}

bool BlockUnmarkAll(ORVEDITOR& e)
{
    Marks(e).Clear();
    return true;
}

bool BlockMarkClicked(ORVEDITOR& e, int x, int y)
{
    ORVLEVEL& level = e.Level();
    const int32_t segment = level.CurrentSegment, side = level.CurrentSide;
    level.CurrentSegment = -1;
    level.PickSide(x, y, e.Camera, e.ClientWidth, e.ClientHeight);
    const int32_t picked = level.CurrentSegment;
    level.CurrentSegment = segment;
    level.CurrentSide = side;
    return picked >= 0 && BlockToggleMark(e, picked);
}

bool BlockCopy(ORVEDITOR& e)
{
    LEVELBLOCK block;
    if (!CopyMarked(e, block))
        return false;
    e.Clipboard = std::move(block);
    return true;
}

bool BlockPaste(ORVEDITOR& e)
{
    ORVLEVEL& level = e.Level();
    std::vector<int32_t> pasted;
    if (!Done(level.GetCurrentSide() &&
              PasteBlock(level, e.Clipboard, level.CurrentSegment, level.CurrentSide, e.JoinShift, &pasted)))
        return false;
    ORVEMARKS& marks = Marks(e);
    marks.Clear();
    for (int32_t s : pasted)
        marks.Set(s, true);
    return true;
}

bool BlockDelete(ORVEDITOR& e)
{
    const std::vector<int32_t> list = Marked(e);
    if (list.empty())
        return false;
    const bool ok = Done(DeleteBlock(e.Level(), list));
    Marks(e);
    return ok;
}

bool BlockMove(ORVEDITOR& e, VECTOR3D offset)
{
    const std::vector<int32_t> list = Marked(e);
    return !list.empty() && Done(MoveBlock(e.Level(), list, offset));
}

bool BlockRotate(ORVEDITOR& e, int axis, double degrees)
{
    const std::vector<int32_t> list = Marked(e);
    return !list.empty() && Done(RotateBlock(e.Level(), list, axis, degrees));
}

bool BlockMirror(ORVEDITOR& e, int axis)
{
    const std::vector<int32_t> list = Marked(e);
    return !list.empty() && Done(MirrorBlock(e.Level(), list, axis));
}

bool BlockSpreadTexture(ORVEDITOR& e)
{
    ORVLEVEL& level = e.Level();
    return Done(level.GetCurrentSide() && SpreadTexture(level, level.CurrentSegment, level.CurrentSide));
}

BLOCKFILERESULT BlockSave(ORVEDITOR& e, const std::string& path)
{
    LEVELBLOCK block;
    if (!CopyMarked(e, block))
        return BLOCKFILE_REFUSED;
    return SaveBlock(block, path.c_str()) ? BLOCKFILE_DONE : BLOCKFILE_FAILED;
}

BLOCKFILERESULT BlockLoad(ORVEDITOR& e, const std::string& path)
{
    LEVELBLOCK block;
    if (!LoadBlock(path.c_str(), block))
        return BLOCKFILE_FAILED;
    e.Clipboard = std::move(block);
    return BLOCKFILE_DONE;
}

int BlockAxis(char letter)
{
    switch (letter)
    {
    case 'x': case 'X': return 0;
    case 'y': case 'Y': return 1;
    case 'z': case 'Z': return 2;
    default: return -1;
    }
}
