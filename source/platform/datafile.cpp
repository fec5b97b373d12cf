#include "platform/datafile.h"
#include "platform/cp1250.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string_view>

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

} // namespace

std::string ResolveDataPath(const char* storedName)
{
    std::string path = Cp1250ToUtf8(storedName ? storedName : "");
    for (char& c : path)
        if (c == '\\')
            c = '/';
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
