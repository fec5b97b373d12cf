#!/usr/bin/env bash
# Installs what is missing, builds, and starts the program on its default level.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)"
cd build/bin
./orvane-cli new default.ORVLevel
./orvane-cli dump default.ORVLevel | head -c 600; echo
