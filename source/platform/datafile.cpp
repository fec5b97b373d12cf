#include "platform/datafile.h"
#include "platform/cp1250.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

bool Exists(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

// Lower case for the letters of code page 1250 (ASCII, Latin-1 and Latin
// Extended-A); everything else stays as it is.
char32_t FoldCase(char32_t c)
{
    if (c >= 'A' && c <= 'Z')
        return c + 0x20;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
        return c + 0x20;
    if (c >= 0x100 && c <= 0x12F && (c & 1) == 0)
        return c + 1;
    if (c >= 0x132 && c <= 0x137 && (c & 1) == 0)
        return c + 1;
    if (c >= 0x139 && c <= 0x148 && (c & 1) == 1)
        return c + 1;
    if (c >= 0x14A && c <= 0x177 && (c & 1) == 0)
        return c + 1;
    if (c == 0x178)
        return 0xFF;
    if (c >= 0x179 && c <= 0x17E && (c & 1) == 1)
        return c + 1;
    return c;
}

// The name as case-folded code points. Bytes that are not valid UTF-8 are
// kept as distinct values outside the character range, so they only match
// themselves.
std::u32string FoldedName(std::string_view s)
{
    std::u32string out;
    size_t pos = 0;
    while (pos < s.size()) {
        uint8_t lead = static_cast<uint8_t>(s[pos]);
        size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
        char32_t c = length == 1 ? lead : length == 2 ? (lead & 0x1F) : length == 3 ? (lead & 0x0F) : (lead & 0x07);
        bool ok = length != 0 && s.size() - pos >= length;
        for (size_t i = 1; ok && i < length; ++i) {
            uint8_t b = static_cast<uint8_t>(s[pos + i]);
            ok = (b & 0xC0) == 0x80;
            c = (c << 6) | (b & 0x3F);
        }
        if (ok) {
            out += FoldCase(c);
            pos += length;
        } else {
            out += static_cast<char32_t>(0x110000 + lead);
            ++pos;
        }
    }
    return out;
}

// The entry of dir whose name equals name ignoring case; of several, the
// smallest by byte order, so the choice does not depend on directory order.
bool FindCaseInsensitive(const std::string& dir, std::string_view name, std::string& found)
{
    DIR* d = opendir(dir.c_str());
    if (!d)
        return false;
    std::u32string wanted = FoldedName(name);
    bool any = false;
    while (dirent* e = readdir(d)) {
        std::string_view entry = e->d_name;
        if (entry == "." || entry == "..")
            continue;
        if (FoldedName(entry) == wanted && (!any || entry < found)) {
            found = entry;
            any = true;
        }
    }
    closedir(d);
    return any;
}

// A UTF-8 path, each component that does not exist as written matched
// case-insensitively; the path unchanged when nothing matches.
std::string ResolveCase(const std::string& path)
{
    if (path.empty() || Exists(path))
        return path;

    // Names were written on a file system that ignores case; look each
    // component up in the directory resolved so far.
    std::string resolved;
    size_t pos = 0;
    while (true) {
        size_t end = path.find('/', pos);
        bool last = end == std::string::npos;
        if (last)
            end = path.size();
        std::string_view part(path.data() + pos, end - pos);
        if (part.empty() || part == "." || part == "..") {
            resolved += part;
        } else {
            std::string candidate = resolved;
            candidate += part;
            if (!Exists(candidate)) {
                std::string match;
                if (!FindCaseInsensitive(resolved.empty() ? "." : resolved, part, match))
                    return path;
                candidate = resolved + match;
            }
            resolved = candidate;
        }
        if (last)
            break;
        resolved += '/';
        pos = end + 1;
    }
    return resolved;
}

bool IsRegular(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string& LevelDirectory()
{
    static std::string dir;
    return dir;
}

std::string Slashed(const char* storedName)
{
    std::string path = Cp1250ToUtf8(storedName ? storedName : "");
    for (char& c : path)
        if (c == '\\')
            c = '/';
    return path;
}

// The first regular file `name` (UTF-8, relative) names in the level's folder
// (when asked) and then the data directories; empty when none does.
std::string FindElsewhere(const std::string& name, bool besideLevel)
{
    if (name.empty() || name[0] == '/')
        return {};
    if (besideLevel && !LevelDirectory().empty())
        if (std::string p = ResolveCase(LevelDirectory() + '/' + name); IsRegular(p))
            return p;
    for (const std::string& dir : DataDirectories())
        if (std::string p = ResolveCase(dir + '/' + name); IsRegular(p))
            return p;
    return {};
}

} // namespace

std::string ResolveDataPath(const char* storedName)
{
    return ResolveCase(Slashed(storedName));
}

const std::vector<std::string>& DataDirectories()
{
    static const std::vector<std::string> dirs = [] {
        std::vector<std::string> d;
        char exe[4096];
        ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
        if (n > 0) {
            std::string self(exe, size_t(n));
            std::string folder = self.substr(0, self.rfind('/'));
            d.push_back(folder);
            // An installed tree moved elsewhere, or a package unpacked anywhere.
            d.push_back(folder + "/../share/orvane-builder");
        }
#ifdef ORV_INSTALLED_DATA_DIR
        d.push_back(ORV_INSTALLED_DATA_DIR);
#endif
        const char* xdg = std::getenv("XDG_DATA_DIRS");
        std::string list = xdg && *xdg ? xdg : "/usr/local/share:/usr/share";
        for (size_t pos = 0; pos <= list.size();) {
            size_t end = list.find(':', pos);
            if (end == std::string::npos)
                end = list.size();
            if (end > pos && list[pos] == '/')
                d.push_back(list.substr(pos, end - pos) + "/orvane-builder");
            pos = end + 1;
        }
        return d;
    }();
    return dirs;
}

void SetLevelDirectory(const std::string& levelFile)
{
    size_t slash = levelFile.rfind('/');
    std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : levelFile.substr(0, slash);
    // Kept absolute, so a later change of the current directory does not move it.
    if (dir[0] != '/') {
        char cwd[4096];
        if (getcwd(cwd, sizeof cwd))
            dir = std::string(cwd) + '/' + dir;
    }
    LevelDirectory() = levelFile.empty() ? std::string() : dir;
}

std::string FindBitmapFile(const char* storedName)
{
    std::string path = ResolveDataPath(storedName);
    if (IsRegular(path))
        return path;
    return FindElsewhere(Slashed(storedName), true);
}

std::string FindDataFile(const char* name)
{
    std::string path = name ? name : "";
    if (path.empty() || Exists(path))
        return path;
    std::string found = FindElsewhere(path, false);
    return found.empty() ? path : found;
}

int OpenBitmapFile(const char* storedName)
{
    int fd = OpenDataFileReadWrite(storedName);
    if (fd >= 0)
        return fd;
    // The shared copies are installed read-only: they are read, never written.
    std::string path = FindElsewhere(Slashed(storedName), true);
    return path.empty() ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
}

int OpenDataFileReadWrite(const char* storedName)
{
    std::string path = ResolveDataPath(storedName);
    if (path.empty())
        return -1;
    int fd = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return -1;
    // The superuser may open a read-only file for writing; it still counts as
    // one the program cannot write. Only plain files are data files.
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || (st.st_mode & 0222) == 0) {
        close(fd);
        return -1;
    }
    return fd;
}
