#include "platform/fileio.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <new>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Opens a regular file and tells its size; -1 when that fails.
int OpenRegular(const std::string& name, size_t& size)
{
    int fd = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))
    {
        close(fd);
        return -1;
    }
    size = size_t(st.st_size);
    return fd;
}

// Reads exactly size bytes and closes the file.
bool ReadAll(int fd, uint8_t* data, size_t size)
{
    bool ok = true;
    size_t done = 0;
    while (ok && done < size)
    {
        ssize_t n = read(fd, data + done, size - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            ok = false; // a file that shrank under us is as unreadable as one that failed
        else
            done += size_t(n);
    }
    close(fd);
    return ok;
}

} // namespace

// Reads a regular file completely; false when it cannot be opened or read.
bool ReadWholeFile(const std::string& name, std::vector<uint8_t>& out)
{
    size_t size;
    int fd = OpenRegular(name, size);
    if (fd < 0)
        return false;
    try
    {
        out.resize(size);
    }
    catch (const std::bad_alloc&)
    {
        close(fd);
        return false;
    }
    return ReadAll(fd, out.data(), size);
}

bool ReadWholeFile(const std::string& name, std::unique_ptr<uint8_t[]>& out, size_t& size)
{
    int fd = OpenRegular(name, size);
    if (fd < 0)
        return false;
    try
    {
        out.reset(new uint8_t[size]); // left unfilled: the read fills it
    }
    catch (const std::bad_alloc&)
    {
        close(fd);
        return false;
    }
    return ReadAll(fd, out.get(), size);
}

static bool WriteAll(int fd, const uint8_t* data, size_t size)
{
    while (size > 0)
    {
        ssize_t n = write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= size_t(n);
    }
    return true;
}

namespace {

// The hidden name of a target's temporary files: ".<name>.orvsave-" and six
// random characters, the name cut short so the whole fits a directory entry.
std::string TempPrefix(const std::string& base)
{
    return "." + base.substr(0, 200) + ".orvsave-";
}

// A save killed half-way leaves its temporary file; the next save of the same
// target clears it away.
void RemoveLeftovers(const std::string& dir, const std::string& prefix)
{
    DIR* d = opendir(dir.c_str());
    if (!d)
        return;
    while (dirent* e = readdir(d))
    {
        const std::string name = e->d_name;
        if (name.size() == prefix.size() + 6 && name.compare(0, prefix.size(), prefix) == 0)
            unlink((dir + name).c_str());
    }
    closedir(d);
}

} // namespace

// Writes the bytes to a new file beside the target and renames it over the
// target, so the previous file survives any failure. A symbolic link is
// followed, so the link itself stays.
bool ReplaceFile(const std::string& name, const uint8_t* data, size_t size)
{
    if (name.empty())
        return false;
    std::string target = name;
    struct stat st;
    if (lstat(target.c_str(), &st) == 0 && S_ISLNK(st.st_mode))
    {
        char resolved[PATH_MAX];
        if (realpath(target.c_str(), resolved))
            target = resolved;
    }
    mode_t mode;
    if (stat(target.c_str(), &st) == 0)
    {
        // A file marked read-only is the owner's "do not touch", even for
        // root, who could rename over it.
        if (!S_ISREG(st.st_mode) || (st.st_mode & 0222) == 0 || access(target.c_str(), W_OK) != 0)
            return false;
        mode = st.st_mode & 07777;
    }
    else
    {
        mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }

    size_t slash = target.rfind('/');
    std::string dir = slash == std::string::npos ? "./" : target.substr(0, slash + 1);
    std::string prefix = TempPrefix(slash == std::string::npos ? target : target.substr(slash + 1));
    RemoveLeftovers(dir, prefix);
    std::string temp = dir + prefix + "XXXXXX";
    int fd = mkstemp(temp.data());
    if (fd < 0)
        return false;
    bool ok = WriteAll(fd, data, size);
    ok = fchmod(fd, mode) == 0 && ok;
    ok = close(fd) == 0 && ok;
    ok = ok && rename(temp.c_str(), target.c_str()) == 0;
    if (!ok)
        unlink(temp.c_str());
    return ok;
}

