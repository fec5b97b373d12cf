#!/bin/sh
# git's external diff driver for level files. git calls it with: path
# old-file old-hex old-mode new-file new-hex new-mode. orvane-cli runs from
# its program directory, where the data files are (ORV_BIN_DIR, or build/bin
# beside this script).
bin="${ORV_BIN_DIR:-$(cd "$(dirname "$0")/../build/bin" && pwd)}"
old=$(realpath "$2") || exit 2
new=$(realpath "$5") || exit 2
echo "orvane-cli diff a/$1 b/$1"
cd "$bin" && ./orvane-cli diff "$old" "$new"
# 1 only means the levels differ.
[ $? -le 1 ]
