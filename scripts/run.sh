#!/usr/bin/env bash
# Installs what is missing, builds, and starts the editor on its default level.
# Without a display it writes the default level's first frame as a picture.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)"
cd build/bin
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display to open the editor on; writing the default level's first frame instead." >&2
  ./orvane-cli new default.ORVLevel
  ./orvane-cli render default.ORVLevel default.png
  echo "$PWD/default.png"
  exit 0
fi
exec ./orvane-builder
