#include "orvlevel/leveldiff.h"

#include "orvlevel/level.h"
#include "orvlevel/leveldump.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unordered_map>

namespace {

struct LEAF
{
    std::string Path;
    std::string_view Value;
};

// Splits the dump's JSON (which this program wrote, so it is well formed)
// into its scalar values, each under its path.
class FLATTENER
{
public:
    FLATTENER(std::string_view json, std::vector<LEAF>& out) : S(json), Out(out) {}

    void Value(std::string& path)
    {
        Skip();
        if (At >= S.size())
            return;
        const size_t keep = path.size();
        if (S[At] == '{')
        {
            ++At;
            for (Skip(); At < S.size() && S[At] != '}'; Skip())
            {
                std::string_view key = String();
                Skip();
                ++At; // ':'
                path += '.';
                path += key;
                Member(path, keep);
            }
            ++At;
        }
        else if (S[At] == '[')
        {
            ++At;
            int n = 0;
            for (Skip(); At < S.size() && S[At] != ']'; Skip())
            {
                path += '[';
                path += std::to_string(n++);
                path += ']';
                Member(path, keep);
            }
            ++At;
        }
        else
        {
            const size_t start = At;
            if (S[At] == '"')
                String();
            else
                while (At < S.size() && !std::strchr(",]} ", S[At]))
                    ++At;
            Out.push_back({path, S.substr(start, At - start)});
        }
    }

private:
    // One member or element: its value, then past the comma that may follow.
    void Member(std::string& path, size_t keep)
    {
        Value(path);
        path.resize(keep);
        Skip();
        if (At < S.size() && S[At] == ',')
            ++At;
    }

    std::string_view S;
    std::vector<LEAF>& Out;
    size_t At = 0;

    void Skip()
    {
        while (At < S.size() && S[At] == ' ')
            ++At;
    }
    // A quoted string from At; answers its contents, escapes left as they are.
    std::string_view String()
    {
        const size_t start = ++At;
        while (At < S.size() && S[At] != '"')
            At += S[At] == '\\' ? 2 : 1;
        return S.substr(start, (At++) - start);
    }
};

std::vector<LEAF> Flatten(std::string_view json, std::string path)
{
    std::vector<LEAF> leaves;
    FLATTENER(json, leaves).Value(path);
    return leaves;
}

class DIFFER
{
public:
    DIFFER(const ORVLEVEL& a, const ORVLEVEL& b) : A(a), B(b) {}

    std::vector<LEVELDIFFLINE> Run()
    {
        Header();
        for (int t = 0; t < DUMP_TABLES; ++t)
            Table(t);
        return std::move(Lines);
    }

private:
    const ORVLEVEL& A;
    const ORVLEVEL& B;
    std::vector<LEVELDIFFLINE> Lines;
    JSONWRITER JA, JB;

    void Header()
    {
        JSONWRITER ja, jb;
        ja.BeginObject();
        DumpHeader(ja, A, false);
        ja.EndObject();
        jb.BeginObject();
        DumpHeader(jb, B, false);
        jb.EndObject();
        if (ja.Out != jb.Out)
            Leaves(ja.Out, jb.Out, "", -1, -1);
    }

    // Records the dump would write the same need no JSON: a quick look at
    // the bytes settles most of a large level.
    bool SameBits(int table, int i) const
    {
        switch (table)
        {
        case DUMP_POINTS: {
            const VECTOR3D *p = A.Points[i], *q = B.Points[i];
            return p && q && std::memcmp(p, q, sizeof *p) == 0;
        }
        case DUMP_SEGMENTS: {
            const SEGMENT *p = A.Segments[i], *q = B.Segments[i];
            return p && q && std::memcmp(p, q, sizeof *p) == 0;
        }
        default: return false;
        }
    }

    void Table(int table)
    {
        const int endA = DumpTableEnd(A, table), endB = DumpTableEnd(B, table);
        const int end = std::max(endA, endB);
        const std::string name = DumpTableName(table);
        for (int i = 0; i < end; ++i)
        {
            if (i < endA && i < endB && SameBits(table, i))
                continue;
            JA.Out.clear();
            JB.Out.clear();
            const bool inA = DumpRecord(JA, A, table, i);
            const bool inB = DumpRecord(JB, B, table, i);
            const std::string path = name + "[" + std::to_string(i) + "]";
            if (inA && !inB)
                Lines.push_back({"- " + path, table, i});
            else if (inB && !inA)
                Lines.push_back({"+ " + path, table, i});
            else if (inA && JA.Out != JB.Out)
                Leaves(JA.Out, JB.Out, path, table, i);
        }
    }

    void Leaves(const std::string& a, const std::string& b, const std::string& path, int table, int32_t index)
    {
        std::vector<LEAF> la = Flatten(a, path), lb = Flatten(b, path);
        auto add = [&](std::string text, const std::string& at) {
            int32_t side = -1, corner = -1;
            if (table == DUMP_SEGMENTS)
            {
                if (size_t s = at.find(".sides["); s != std::string::npos)
                    side = std::atoi(at.c_str() + s + 7);
                else if (size_t n = at.find(".neighbours["); n != std::string::npos)
                    side = std::atoi(at.c_str() + n + 12);
                else if (size_t c = at.find(".corners["); c != std::string::npos)
                    corner = std::atoi(at.c_str() + c + 9);
            }
            Lines.push_back({std::move(text), table, index, side, corner});
        };
        auto change = [&](const LEAF& x, const LEAF& y) {
            if (x.Value != y.Value)
                add(x.Path.substr(x.Path[0] == '.') + ": " + std::string(x.Value) + " -> " + std::string(y.Value),
                    x.Path);
        };
        // Records of one kind share their shape; objects of two classes may not.
        bool sameShape = la.size() == lb.size();
        for (size_t k = 0; sameShape && k < la.size(); ++k)
            sameShape = la[k].Path == lb[k].Path;
        if (sameShape)
        {
            for (size_t k = 0; k < la.size(); ++k)
                change(la[k], lb[k]);
            return;
        }
        std::unordered_map<std::string_view, const LEAF*> inB;
        for (const LEAF& y : lb)
            inB.emplace(y.Path, &y);
        std::unordered_map<std::string_view, bool> inA;
        for (const LEAF& x : la)
        {
            inA.emplace(x.Path, true);
            if (auto it = inB.find(x.Path); it != inB.end())
                change(x, *it->second);
            else
                add("- " + x.Path.substr(x.Path[0] == '.'), x.Path);
        }
        for (const LEAF& y : lb)
            if (!inA.count(y.Path))
                add("+ " + y.Path.substr(y.Path[0] == '.'), y.Path);
    }
};

} // namespace

std::vector<LEVELDIFFLINE> DiffLevels(const ORVLEVEL& a, const ORVLEVEL& b)
{
    return DIFFER(a, b).Run();
}
