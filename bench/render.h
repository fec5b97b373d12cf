// The drawing benchmarks: the full-size level's frame at 640 x 480 in the
// offscreen context, the plain immediate-mode drawing beside the batched
// one, and meshes replayed from their lists beside compiling them afresh.
#pragma once

// Registers them; false (with a message) when no offscreen context can be
// made, and then none are registered.
bool RegisterRenderBenchmarks();
