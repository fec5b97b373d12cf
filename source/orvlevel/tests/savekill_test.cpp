// Saves killed at random moments by a real process: the file on disk is always
// one whole version, and what a killed save leaves is hidden and cleared away.
#include "../../../bench/fulllevel.h"
#include "orvlevel/tests/leveltesting.h"

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

class SaveKillTest : public PlatformTest
{
};

TEST_F(SaveKillTest, TheFileIsAlwaysOneWholeVersion)
{
    std::unique_ptr<ORVLEVEL> level = BuildFullLevel();
    TEMPDIR dir;
    const fs::path file = dir / "full.ORVLevel";
    level->SaveLevel(file.c_str());
    const std::vector<uint8_t> a = level->Serialize();
    level->Points[0]->x += 1;
    const std::vector<uint8_t> b = level->Serialize();

    std::mt19937 random(7);
    int killedMidSave = 0;
    for (int i = 0; i < 50; ++i)
    {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
        {
            // Saves the two versions in turn until killed.
            for (int k = 0;; ++k)
            {
                level->Points[0]->x += (k & 1) ? 1.0f : -1.0f;
                level->SaveLevel(file.c_str());
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(2000 + random() % 20000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        const std::vector<uint8_t> now = ReadFile(file);
        ASSERT_TRUE(now == a || now == b) << "after kill " << i;
        for (const auto& e : fs::directory_iterator(dir.Path))
        {
            const std::string name = e.path().filename().string();
            if (name == "full.ORVLevel")
                continue;
            EXPECT_EQ(name.rfind(".full.ORVLevel.orvsave-", 0), 0u) << name;
            ++killedMidSave;
        }
    }
    EXPECT_GT(killedMidSave, 0); // some kills did land inside a save

    level->SaveLevel(file.c_str());
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path), fs::directory_iterator()), 1);
    EXPECT_EQ(ReadFile(file), level->Serialize());
}
