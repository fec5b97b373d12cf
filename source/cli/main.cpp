// orvane-cli: works on level files without the editor. Messages go to
// standard error as "message [CAPTION] TEXT" lines; data files are looked up
// as in the editor (platform/datafile.h).
#include "cli/commands.h"

#include "math/random.h"
#include "math/trig.h"

#include <ctime>

int main(int argc, char** argv)
{
    SRand(static_cast<uint32_t>(std::time(nullptr)));
    InitTrigTables();
    return RunCommandLine(argc, argv);
}
