#!/usr/bin/env bash
# Installs every Debian package the project needs to build, run and test.
# Idempotent: when everything is present it prints nothing and changes nothing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  qt6-base-dev libqt6opengl6-dev
  libgl-dev libgl1-mesa-dev libglu1-mesa-dev libgl1-mesa-dri
  libegl-dev libegl-mesa0 libpng-dev zlib1g-dev
  libfreetype-dev fonts-dejavu-core
  libopenal-dev libopenal1
  qt6-translations-l10n
  xvfb xauth xdotool
  dpkg-dev file appstream
  clang libclang-rt-14-dev llvm
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
echo "Installing: ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq >/dev/null
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
