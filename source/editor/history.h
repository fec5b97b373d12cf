// Undo and redo of every change to the level. The history keeps the level's
// file image as of the last step and, per step, the two byte ranges that turn
// one image into the other, so a small edit costs a few bytes however large
// the level is. Memory is bounded; the oldest steps go first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

class ORVLEVEL;

// What the user had selected: the selected side and corner, and the current
// texture of the texture manager.
struct LEVELSELECTION
{
    int32_t Segment = -1, Side = 0, Point = 0, Texture = 0;
    bool operator==(const LEVELSELECTION&) const = default;
};

class ORVEHISTORY
{
public:
    static constexpr size_t DEFAULT_MEMORY_LIMIT = size_t(256) << 20;

    explicit ORVEHISTORY(ORVLEVEL& level, size_t memoryLimit = DEFAULT_MEMORY_LIMIT);

    // Forgets every step and starts from the level as it is now.
    void Reset();
    // An action starts: its step, if it makes one, goes back to this selection.
    void Begin();
    // The action (or one press of a dialog that stays open) is over: when the
    // level or the current texture changed since the last step, that is a new
    // step, and the redo list is gone. False when nothing changed.
    bool Checkpoint();

    bool CanUndo() const { return !Done.empty(); }
    bool CanRedo() const { return !Undone.empty(); }
    // Each puts back the level and the selection as they were; false when
    // there is nothing to undo or redo.
    bool Undo();
    bool Redo();

    // Called after undo or redo has put a stored level back.
    std::function<void()> Restored;

    size_t Steps() const { return Done.size(); }
    // Bytes held: the current image and every step's ranges.
    size_t MemoryUsed() const { return Memory + Image.size(); }

private:
    // Turns image A into B: A's first Prefix and last Suffix bytes with Middle between.
    struct DELTA
    {
        size_t Prefix = 0, Suffix = 0;
        std::vector<uint8_t> Middle;
    };
    struct STEP
    {
        DELTA Back, Forward;
        LEVELSELECTION Before, After;
        size_t Bytes() const { return Back.Middle.size() + Forward.Middle.size() + sizeof(STEP); }
    };

    static DELTA Diff(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b);
    static std::vector<uint8_t> Apply(const DELTA& d, const std::vector<uint8_t>& a);
    LEVELSELECTION Selection() const;
    void Select(const LEVELSELECTION& s);
    void Restore(const DELTA& d, const LEVELSELECTION& s);
    void Trim();

    ORVLEVEL& Level;
    const size_t MemoryLimit;
    std::deque<STEP> Done;
    std::vector<STEP> Undone;
    std::vector<uint8_t> Image; // the level as of the last step
    uint64_t ImageRevision = 0;
    LEVELSELECTION ImageSelection, Started;
    size_t Memory = 0; // the steps' share of MemoryUsed
};
