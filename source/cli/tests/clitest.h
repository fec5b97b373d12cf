// Runs the built orvane-cli (or another program) as its own process, from the
// program directory, with its files in a fresh temporary directory.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

struct RUN
{
    int Status;
    std::string Out;
    std::string Err;
};

inline std::string ReadText(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void WriteText(const fs::path& p, const std::string& bytes)
{
    std::ofstream(p, std::ios::binary) << bytes;
}

class CliTest : public ::testing::Test
{
protected:
    fs::path Dir;

    void SetUp() override
    {
        std::string t = (fs::temp_directory_path() / "orvcli-XXXXXX").string();
        ASSERT_NE(mkdtemp(t.data()), nullptr);
        Dir = t;
        fs::create_directory(Dir / "io");
    }
    void TearDown() override { fs::remove_all(Dir); }

    fs::path In(const char* name) const { return Dir / name; }
    std::string Path(const char* name) const { return In(name).string(); }

    RUN Cli(const std::vector<std::string>& args) const { return RunIn(ORV_CLI_PATH, ORV_CLI_WORKDIR, args); }
    // Runs `program` from folder `cwd` with the environment variables given
    // (an empty value unsets one).
    RUN RunIn(const fs::path& program, const fs::path& cwd, const std::vector<std::string>& args,
              const std::map<std::string, std::string>& env = {}) const
    {
        const fs::path out = Dir / "io" / "stdout", err = Dir / "io" / "stderr";
        std::vector<char*> argv{const_cast<char*>(program.c_str())};
        for (const std::string& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        pid_t pid = fork();
        if (pid == 0)
        {
            for (const auto& [name, value] : env)
                value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
            int o = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            int e = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            if (o < 0 || e < 0 || dup2(o, 1) < 0 || dup2(e, 2) < 0 || chdir(cwd.c_str()) != 0)
                _exit(126);
            execv(program.c_str(), argv.data());
            _exit(127);
        }
        int status = 0;
        waitpid(pid, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadText(out), ReadText(err)};
    }
};
