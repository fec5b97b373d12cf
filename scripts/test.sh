#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test; then builds
# it all again with clang, AddressSanitizer and UndefinedBehaviorSanitizer and
# runs every test there too, with every fuzz corpus replayed through its
# target. Any sanitizer report fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
jobs=$(nproc)

run_tests() {
  # Tests that open windows need an X server; they get one from xvfb-run,
  # kept from resetting between test programs, when a new client could find
  # it half-way through the reset.
  if command -v xvfb-run >/dev/null 2>&1 && [ -z "${DISPLAY:-}" ]; then
    xvfb-run -a -s "-screen 0 1024x768x24 -noreset" ctest --output-on-failure -j"$jobs"
  else
    ctest --output-on-failure -j"$jobs"
  fi
}

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$jobs"
(cd build && run_tests)

echo "== The same tests under AddressSanitizer and UndefinedBehaviorSanitizer, and the fuzz corpora"
CC=clang CXX=clang++ cmake -S . -B build-san -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORV_BUILD_FUZZ=ON -DORV_BUILD_BENCH=OFF >/dev/null
cmake --build build-san -j"$jobs"
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
(cd build-san && run_tests)
