#include "editor/filepath.h"

#include <unistd.h>

#include <climits>
#include <vector>

namespace {

// The pieces between separators, empty ones skipped as strtok skips them.
std::vector<std::string> Split(const std::string& text)
{
    std::vector<std::string> pieces;
    size_t start = 0;
    while (start <= text.size())
    {
        size_t end = text.find('/', start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start)
            pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

void ToUpper(std::string& s)
{
    for (char& c : s)
        if (c >= 'a' && c <= 'z')
            c = char(c - 'a' + 'A');
}

} // namespace

std::string MakeRelativePath(const std::string& path, const std::string& current)
{
    std::vector<std::string> p = Split(path);
    std::vector<std::string> c = Split(current);
    const size_t m = std::min(p.size(), c.size());
    size_t common = m;
    for (size_t i = 0; i < m; ++i)
    {
        std::string a = c[i], b = p[i];
        ToUpper(a);
        ToUpper(b);
        if (a != b)
        {
            common = i;
            // The first directory that differs keeps the upper case it was
            // compared in; the file name keeps its own.
            if (i + 1 < p.size())
                p[i] = b;
            break;
        }
    }
    std::string result;
    for (size_t i = common; i < c.size(); ++i)
        result += "..\\";
    for (size_t i = common; i < p.size(); ++i)
        result += p[i] + "\\";
    if (!result.empty())
        result.pop_back();
    return result;
}

std::string MakeRelativePath(const std::string& path)
{
    char buffer[PATH_MAX];
    if (!getcwd(buffer, sizeof buffer))
        return path;
    return MakeRelativePath(path, buffer);
}
