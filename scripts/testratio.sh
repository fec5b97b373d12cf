#!/usr/bin/env bash
# Test lines against code lines, counting the non-blank lines of tracked .cpp
# and .h files that are not only a // comment. Tests are the files under any
# tests/ folder; code is every other file outside tests/, fuzz/ and bench/.
set -euo pipefail
cd "$(dirname "$0")/.."

count() { xargs -r cat | grep -v '^[[:space:]]*$' | grep -vc '^[[:space:]]*//' || true; }

files=$(git ls-files -- '*.cpp' '*.h')
tests=$(grep -E '(^|/)tests/' <<<"$files" | count)
code=$(grep -vE '(^|/)(tests|fuzz|bench)/' <<<"$files" | count)
awk -v t="$tests" -v c="$code" 'BEGIN { printf "test lines %d, code lines %d, tests are %.1f%% of the code\n", t, c, 100 * t / c }'
