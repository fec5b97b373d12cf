#include "editor/history.h"

#include "orvlevel/level.h"

#include <algorithm>

ORVEHISTORY::ORVEHISTORY(ORVLEVEL& level, size_t memoryLimit) : Level(level), MemoryLimit(memoryLimit)
{
    Reset();
}

void ORVEHISTORY::Reset()
{
    Done.clear();
    Undone.clear();
    Memory = 0;
    Image = Level.Serialize();
    ImageRevision = Level.Revision;
    ImageSelection = Started = Selection();
}

LEVELSELECTION ORVEHISTORY::Selection() const
{
    return {Level.CurrentSegment, Level.CurrentSide, Level.CurrentPoint, Level.CurrentTexture};
}

void ORVEHISTORY::Select(const LEVELSELECTION& s)
{
    Level.CurrentSegment = s.Segment;
    Level.CurrentSide = s.Side;
    Level.CurrentPoint = s.Point;
    Level.CurrentTexture = s.Texture;
}

void ORVEHISTORY::Begin()
{
    Started = Selection();
}

ORVEHISTORY::DELTA ORVEHISTORY::Diff(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b)
{
    DELTA d;
    const size_t n = std::min(a.size(), b.size());
    d.Prefix = size_t(std::mismatch(a.begin(), a.begin() + n, b.begin()).first - a.begin());
    const size_t rest = n - d.Prefix;
    d.Suffix = size_t(std::mismatch(a.rbegin(), a.rbegin() + rest, b.rbegin()).first - a.rbegin());
    d.Middle.assign(b.begin() + d.Prefix, b.end() - d.Suffix);
    return d;
}

std::vector<uint8_t> ORVEHISTORY::Apply(const DELTA& d, const std::vector<uint8_t>& a)
{
    std::vector<uint8_t> b;
    b.reserve(d.Prefix + d.Middle.size() + d.Suffix);
    b.insert(b.end(), a.begin(), a.begin() + d.Prefix);
    b.insert(b.end(), d.Middle.begin(), d.Middle.end());
    b.insert(b.end(), a.end() - d.Suffix, a.end());
    return b;
}

bool ORVEHISTORY::Checkpoint()
{
    const LEVELSELECTION now = Selection();
    const bool textureChanged = now.Texture != ImageSelection.Texture;
    if (Level.Revision == ImageRevision && !textureChanged)
    {
        Started = now;
        return false;
    }
    std::vector<uint8_t> image = Level.Serialize();
    ImageRevision = Level.Revision;
    // A revision can advance without a byte changing (lighting a level with
    // nothing to light, say); that is no step.
    if (image == Image && !textureChanged)
    {
        ImageSelection = Started = now;
        return false;
    }
    STEP step;
    step.Back = Diff(image, Image);
    step.Forward = Diff(Image, image);
    step.Before = Started;
    step.After = now;
    Memory += step.Bytes();
    Done.push_back(std::move(step));
    for (const STEP& s : Undone)
        Memory -= s.Bytes();
    Undone.clear();
    Image = std::move(image);
    ImageSelection = Started = now;
    Trim();
    return true;
}

void ORVEHISTORY::Trim()
{
    // The redo list is empty whenever a step is added, so only old steps go.
    while (!Done.empty() && MemoryUsed() > MemoryLimit)
    {
        Memory -= Done.front().Bytes();
        Done.pop_front();
    }
}

void ORVEHISTORY::Restore(const DELTA& d, const LEVELSELECTION& s)
{
    Image = Apply(d, Image);
    Level.RestoreImage(Image.data(), Image.size());
    Select(s);
    ImageRevision = Level.Revision;
    ImageSelection = Started = s;
    if (Restored)
        Restored();
}

bool ORVEHISTORY::Undo()
{
    // Whatever happened since the last step (nothing should) becomes a step first.
    Checkpoint();
    if (Done.empty())
        return false;
    STEP step = std::move(Done.back());
    Done.pop_back();
    Restore(step.Back, step.Before);
    Undone.push_back(std::move(step));
    return true;
}

bool ORVEHISTORY::Redo()
{
    if (Undone.empty())
        return false;
    STEP step = std::move(Undone.back());
    Undone.pop_back();
    Restore(step.Forward, step.After);
    Done.push_back(std::move(step));
    return true;
}
