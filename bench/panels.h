// The designer's tools on the full-size level: comparing two copies of it
// that differ in one point, and the level check panel's refresh after an
// edit (the check panel keys its refresh off the level's revision, so frames
// without an edit pay only the comparison of two numbers).
#pragma once

void RegisterPanelBenchmarks();
