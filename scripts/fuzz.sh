#!/usr/bin/env bash
# Runs every fuzz target for SECONDS each (default 60) and reports executions
# and findings. Builds the fuzz targets (clang, sanitizers) in build-fuzz first.
# New inputs that reach new code land in build-fuzz/fuzz-work/<target>; inputs
# that crash, hang over a second or use over 2 GB land in
# build-fuzz/fuzz-findings/<target>. Set FUZZ_TARGETS to run only some, and
# FUZZ_FLAGS for more libFuzzer flags (say -max_len=1024).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
bash scripts/setup.sh
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORV_BUILD_FUZZ=ON -DORV_BUILD_BENCH=OFF -DORV_BUILD_TESTS=OFF -DORV_BUILD_EDITOR=OFF >/dev/null
cmake --build build-fuzz -j"$(nproc)" >/dev/null
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
targets=${FUZZ_TARGETS:-"fuzz_bmp fuzz_mesh fuzz_wave fuzz_script fuzz_level fuzz_leveluse"}
status=0
printf '%-15s %12s %9s %10s %9s\n' target executions seconds "per second" findings
for t in $targets; do
  work=build-fuzz/fuzz-work/$t
  findings=build-fuzz/fuzz-findings/$t
  mkdir -p "$work" "$findings"
  log=build-fuzz/fuzz-findings/$t.log
  (cd build-fuzz/bin && ./"$t" -max_total_time="$seconds" -timeout=1 -rss_limit_mb=2048 \
      -artifact_prefix="$PWD/../../$findings/" -print_final_stats=1 ${FUZZ_FLAGS:-} \
      "$PWD/../../$work" "$PWD/../../fuzz/corpus/$t") >"$log" 2>&1 || true
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo 0)
  took=$(grep -o 'Done [0-9]* runs in [0-9]* second' "$log" | grep -o 'in [0-9]*' | grep -o '[0-9]*' || echo "$seconds")
  found=$(find "$findings" -type f | wc -l)
  printf '%-15s %12s %9s %10s %9s\n' "$t" "${runs:-0}" "${took:-?}" "$(( ${runs:-0} / (${took:-1} > 0 ? ${took:-1} : 1) ))" "$found"
  [ "$found" -eq 0 ] || status=1
done
exit $status
