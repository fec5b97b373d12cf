#!/usr/bin/env bash
# Builds the Debian package of orvane-builder and orvane-cli with their data
# files into build-deb/, laid out under /usr (the folder the programs' data
# directory is compiled against), and prints the package's path.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build-deb -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DORV_BUILD_TESTS=OFF \
  -DORV_BUILD_BENCH=OFF >/dev/null
cmake --build build-deb -j"$(nproc)"
(cd build-deb && cpack -G DEB >/dev/null)
ls "$PWD"/build-deb/orvane-builder_*.deb
