#include "editor/recovery.h"

#include "editor/document.h"
#include "platform/binio.h"
#include "platform/fileio.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

const char TRAILER_MAGIC[8] = {'O', 'R', 'V', 'R', 'E', 'C', 'O', 'V'};
constexpr size_t TRAILER_SIZE = 1 + 4 + 4 + 4 + sizeof TRAILER_MAGIC; // after the name bytes

uint32_t Crc32(const uint8_t* data, size_t size)
{
    static uint32_t table[256];
    if (!table[1])
        for (uint32_t i = 0; i < 256; ++i)
        {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k)
                c = c & 1 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            table[i] = c;
        }
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t i = 0; i < size; ++i)
        crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return crc ^ 0xFFFFFFFFu;
}

uint32_t U32At(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

std::string DefaultDirectory()
{
    if (const char* d = std::getenv("ORV_RECOVERY_DIR"); d && *d)
        return d;
    if (const char* d = std::getenv("XDG_DATA_HOME"); d && *d == '/')
        return std::string(d) + "/orvane-builder";
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : "/tmp") + "/.local/share/orvane-builder";
}

// Makes the directory and its parents.
bool MakeDirectories(const std::string& dir)
{
    for (size_t at = 1; at <= dir.size(); ++at)
        if (at == dir.size() || dir[at] == '/')
        {
            std::string part = dir.substr(0, at);
            if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
                return false;
        }
    return true;
}

} // namespace

ORVERECOVERY::ORVERECOVERY(ORVEDOCUMENT& document, std::string directory, uint32_t intervalMs)
    : Doc(document), Directory(directory.empty() ? DefaultDirectory() : std::move(directory)),
      File(Directory + "/recovery.ORVLevel"), IntervalMs(intervalMs)
{
    if (IntervalMs == 0)
    {
        const char* ms = std::getenv("ORV_RECOVERY_MS");
        IntervalMs = ms && std::atol(ms) > 0 ? uint32_t(std::atol(ms)) : DEFAULT_INTERVAL_MS;
    }
}

bool ORVERECOVERY::Write()
{
    BINWRITER w;
    w.Bytes = Doc.Level().Serialize();
    const uint32_t imageSize = uint32_t(w.Bytes.size());
    const uint32_t crc = Crc32(w.Bytes.data(), w.Bytes.size());
    const std::string name = Doc.FileName().value_or("");
    // The trailer follows the level's last section, where level readers
    // stop, and is read from the end of the file.
    w.Raw(name.data(), name.size());
    w.U8(Doc.FileName() ? 1 : 0);
    w.U32(uint32_t(name.size()));
    w.U32(imageSize);
    w.U32(crc);
    w.Raw(TRAILER_MAGIC, sizeof TRAILER_MAGIC);
    if (!MakeDirectories(Directory) || !ReplaceFile(File, w.Bytes.data(), w.Bytes.size()))
        return false;
    WrittenRevision = Doc.Revision();
    AnyWritten = true;
    return true;
}

bool ORVERECOVERY::Tick(uint32_t nowMs)
{
    if (!Doc.Modified() || (AnyWritten && WrittenRevision == Doc.Revision()))
        return false;
    if (AnyWritten && nowMs - LastWriteMs < IntervalMs)
        return false;
    LastWriteMs = nowMs;
    return Write();
}

bool ORVERECOVERY::Close()
{
    if (Doc.Modified())
        return Write();
    Remove();
    return true;
}

void ORVERECOVERY::Remove()
{
    unlink(File.c_str());
    AnyWritten = false;
}

ORVERECOVERY::FOUND ORVERECOVERY::Find(RECOVERYCOPY& copy) const
{
    struct stat st;
    if (stat(File.c_str(), &st) != 0)
        return NONE;
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(File, bytes) || bytes.size() < TRAILER_SIZE)
        return DAMAGED;
    const uint8_t* end = bytes.data() + bytes.size();
    if (std::memcmp(end - sizeof TRAILER_MAGIC, TRAILER_MAGIC, sizeof TRAILER_MAGIC) != 0)
        return DAMAGED;
    const uint32_t crc = U32At(end - 12), imageSize = U32At(end - 16), nameSize = U32At(end - 20);
    const bool hasName = end[-21] != 0;
    if (uint64_t(imageSize) + nameSize + TRAILER_SIZE != bytes.size() || Crc32(bytes.data(), imageSize) != crc)
        return DAMAGED;
    copy.Image.assign(bytes.begin(), bytes.begin() + imageSize);
    copy.FileName.reset();
    if (hasName)
        copy.FileName = std::string(reinterpret_cast<const char*>(bytes.data() + imageSize), nameSize);
    return INTACT;
}

std::string ORVERECOVERY::SetAside() const
{
    char stamp[32];
    std::time_t now = std::time(nullptr);
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", std::localtime(&now));
    std::string aside = Directory + "/recovery-damaged-" + stamp + ".ORVLevel";
    return rename(File.c_str(), aside.c_str()) == 0 ? aside : "";
}

void ORVERECOVERY::Restore(const RECOVERYCOPY& copy)
{
    Doc.Recover(copy.Image, copy.FileName);
    // The document now holds the work; a fresh copy follows its next change.
    Remove();
    Write();
}
