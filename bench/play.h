// The play-test on the full-size level: one game tick with 100 ships
// fighting, and the frame from the player's ship with its cockpit.
#pragma once

// Registers both; the frame only when an offscreen context can be made.
void RegisterPlayBenchmarks();
