// Automatic recovery: while the level has changes that are not saved, a copy
// of it goes into the user's data directory (never beside the designer's own
// file) at most every 30 seconds and when the editor closes. The copy is an
// ordinary level file followed by a trailer with the level's own file name
// and a checksum, so a damaged copy is recognised and never loaded half-way.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class ORVEDOCUMENT;

struct RECOVERYCOPY
{
    std::vector<uint8_t> Image;           // the level file image
    std::optional<std::string> FileName;  // the level's own file name, if it had one
};

class ORVERECOVERY
{
public:
    static constexpr uint32_t DEFAULT_INTERVAL_MS = 30000;

    // `directory` empty: $ORV_RECOVERY_DIR, else $XDG_DATA_HOME/orvane-builder,
    // else ~/.local/share/orvane-builder. `intervalMs` 0: $ORV_RECOVERY_MS
    // (for tests of the running program), else 30 seconds.
    explicit ORVERECOVERY(ORVEDOCUMENT& document, std::string directory = "", uint32_t intervalMs = 0);

    const std::string& Path() const { return File; }

    // From the frame loop: writes a copy when the document has changes that
    // no copy holds yet and the last copy is at least the interval old.
    // True when a copy was written.
    bool Tick(uint32_t nowMs);
    // Writes a copy now if the document has unsaved changes, else removes
    // any copy (the editor is closing). False when writing failed.
    bool Close();
    // After a save or an open: the designer's file holds the work.
    void Remove();

    enum FOUND { NONE, INTACT, DAMAGED };
    // Looks for a copy left by an editor that did not close cleanly.
    FOUND Find(RECOVERYCOPY& copy) const;
    // A damaged copy is renamed beside itself; the new name, or "" on failure.
    std::string SetAside() const;
    // Loads a found copy into the document: the level's own file name is
    // kept, the history starts afresh and the document counts as modified.
    // The copy itself is removed once the document holds it.
    void Restore(const RECOVERYCOPY& copy);

private:
    bool Write();

    ORVEDOCUMENT& Doc;
    std::string Directory;
    std::string File;
    uint32_t IntervalMs;
    uint64_t WrittenRevision = 0;
    bool AnyWritten = false;
    uint32_t LastWriteMs = 0;
};
