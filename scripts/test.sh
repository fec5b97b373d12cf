#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)"
cd build
# Tests that open windows need an X server; they get one from xvfb-run.
if command -v xvfb-run >/dev/null 2>&1 && [ -z "${DISPLAY:-}" ]; then
  xvfb-run -a -s "-screen 0 1024x768x24" ctest --output-on-failure -j"$(nproc)"
else
  ctest --output-on-failure -j"$(nproc)"
fi
