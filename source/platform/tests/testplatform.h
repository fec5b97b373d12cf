// A platform backend for tests: it records messages and beeps, lets a test set
// the clock, and turns a fatal end into an exception the test can catch.
#pragma once

#include <gtest/gtest.h>

#include "platform/platform.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

struct FATALEXIT
{
    int Status;
};

struct RECORDEDMESSAGE
{
    std::string Text;
    std::string Caption;
    MESSAGEICON Icon;
    bool operator==(const RECORDEDMESSAGE&) const = default;
    friend std::ostream& operator<<(std::ostream& o, const RECORDEDMESSAGE& m) { return o << m.Caption << ": " << m.Text << " (" << m.Icon << ")"; }
};
using MESSAGES = std::vector<RECORDEDMESSAGE>;

class TESTPLATFORM : public PLATFORM
{
public:
    std::vector<RECORDEDMESSAGE> Messages;
    int Beeps = 0;
    bool Answer = false; // to every question
    uint32_t Now = 1000;

    void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) override
    {
        Messages.push_back({text, caption, icon});
    }
    bool Ask(const std::string& text, const std::string& caption) override
    {
        Messages.push_back({text, caption, MSGICON_QUESTION});
        return Answer;
    }
    void Beep() override { ++Beeps; }
    [[noreturn]] void FatalExit(int status) override { throw FATALEXIT{status}; }
    uint32_t TickCount() override { return Now; }

    void Reset()
    {
        Messages.clear();
        Beeps = 0;
        Answer = false;
        Now = 1000;
    }
};

// The backend every core test runs with (installed by the test main).
TESTPLATFORM& TestPlatform();

// Resets the recorded state before each test.
class PlatformTest : public ::testing::Test
{
protected:
    void SetUp() override { TestPlatform().Reset(); }
    TESTPLATFORM& P() { return TestPlatform(); }
};

inline std::vector<uint8_t> ReadFile(const std::filesystem::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void WriteFile(const std::filesystem::path& p, const std::vector<uint8_t>& bytes)
{
    std::ofstream(p, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

// A fresh temporary directory, removed with its contents.
struct TEMPDIR
{
    std::filesystem::path Path;
    TEMPDIR()
    {
        std::string t = (std::filesystem::temp_directory_path() / "orvtest-XXXXXX").string();
        if (mkdtemp(t.data()))
            Path = t;
    }
    ~TEMPDIR()
    {
        std::error_code ignored;
        std::filesystem::permissions(Path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(Path, ignored);
    }
    TEMPDIR(const TEMPDIR&) = delete;
    TEMPDIR& operator=(const TEMPDIR&) = delete;
    std::filesystem::path operator/(const std::string& name) const { return Path / name; }
    // Writes a file into the directory; its path.
    std::string Write(const std::string& name, const std::vector<uint8_t>& bytes) const
    {
        WriteFile(Path / name, bytes);
        return (Path / name).string();
    }
};
