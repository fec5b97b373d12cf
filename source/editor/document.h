// The level the editor works on, with its file and its history of changes.
// Every change to the level advances Revision(); the view's caches, the
// window title, recovery copies and undo key off it. The document installs
// its level as TheLevel for its lifetime.
#pragma once

#include "editor/blocks.h"
#include "editor/history.h"
#include "orvlevel/level.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class ORVEDOCUMENT
{
public:
    // The default level, unmodified, without a file name.
    ORVEDOCUMENT();
    ORVEDOCUMENT(const ORVEDOCUMENT&) = delete;
    ORVEDOCUMENT& operator=(const ORVEDOCUMENT&) = delete;

    ORVLEVEL& Level() { return *Owned; }
    const ORVLEVEL& Level() const { return *Owned; }

    // Each answers whether the file was read or written. A failure has been
    // reported with the level's own message and changes nothing else: the
    // level, its file name and the modified state stay as they were.
    bool Open(const std::string& path);
    // Without a file name there is nothing to save to: false, and the caller
    // asks for one (Save as).
    bool Save();
    bool SaveAs(const std::string& path);
    // Replaces the level with a recovered image under its old file name; the
    // history starts afresh and the document counts as modified, since the
    // work is in no file of the designer's.
    void Recover(const std::vector<uint8_t>& image, const std::optional<std::string>& fileName);

    const std::optional<std::string>& FileName() const { return Level().FileName; }
    uint64_t Revision() const { return Level().Revision; }
    // Changes since the last open or save.
    bool Modified() const { return Revision() != SavedRevision; }

private:
    std::unique_ptr<ORVLEVEL> Owned;
    SCOPEDLEVEL Installed;
    uint64_t SavedRevision = 0;

public:
    // Undo and redo; opening a level starts it afresh, saving leaves it.
    ORVEHISTORY History{*Owned};
    // The marked segments; opening a level clears them, undo and redo drop
    // those whose segments they take away.
    ORVEMARKS Marks;
};
