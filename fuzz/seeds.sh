#!/usr/bin/env bash
# Writes the first seeds of every fuzz corpus with our own tools: the data
# generator's files, the default level, levels the editing scripts build, a
# simulated battle half-way and at its end, and small bitmaps and waves of
# every depth and layout the loaders read. Run from the repository root after
# a build (it uses build/bin). Findings are added to the corpora by hand.
set -euo pipefail
root=$(pwd)
bin=$root/build/bin
corpus=$root/fuzz/corpus
mkdir -p "$corpus"/{fuzz_bmp,fuzz_mesh,fuzz_wave,fuzz_level,fuzz_leveluse,fuzz_script}

cp "$bin"/InvSide.bmp "$bin"/SmallExplosion.bmp "$corpus"/fuzz_bmp/
cp "$bin"/*.lwo "$corpus"/fuzz_mesh/
cp "$bin"/LaserShot.wav "$corpus"/fuzz_wave/

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
cp "$bin"/*.bmp "$bin"/*.lwo .
"$bin"/orvane-cli new default.level
for s in "$corpus"/fuzz_script/*.orvs; do
  "$bin"/orvane-cli run "$s" >/dev/null 2>&1 || true
done
"$bin"/orvane-cli simulate out.level 40 battle40.level 3 >/dev/null 2>&1
"$bin"/orvane-cli simulate out.level 300 battle300.level 3 >/dev/null 2>&1
for l in default.level out.level battle40.level battle300.level; do
  cp "$l" "$corpus"/fuzz_level/
  cp "$l" "$corpus"/fuzz_leveluse/
done

python3 - "$corpus" <<'PY'
import struct, sys
corpus = sys.argv[1]

def bmp(name, w, h, bpp, palette=b""):
    stride = (w * bpp // 8 + 3) & ~3
    pixels = bytes((i * 37) & 0xFF for i in range(stride * h))
    offset = 14 + 40 + len(palette)
    info = struct.pack("<IiiHHIIiiII", 40, w, h, 1, bpp, 0, len(pixels), 2835, 2835, len(palette) // 4, 0)
    head = b"BM" + struct.pack("<IHHI", offset + len(pixels), 0, 0, offset)
    open(f"{corpus}/fuzz_bmp/{name}", "wb").write(head + info + palette + pixels)

bmp("rgb2x2.bmp", 2, 2, 24)
bmp("rgb3x1.bmp", 3, 1, 24)
bmp("pal4x2.bmp", 4, 2, 8, bytes(range(256)) * 4)
bmp("rgba1x1.bmp", 1, 1, 32)

def wave(name, channels, bits, frames, extra_fmt=b"", list_chunk=False):
    data = bytes((i * 11) & 0xFF for i in range(frames * channels * bits // 8))
    fmt = struct.pack("<HHIIHH", 1, channels, 11025, 11025 * channels * bits // 8, channels * bits // 8, bits) + extra_fmt
    chunks = b"fmt " + struct.pack("<I", len(fmt)) + fmt
    if list_chunk:
        chunks += b"LIST" + struct.pack("<I", 4) + b"INFO"
    chunks += b"data" + struct.pack("<I", len(data)) + data
    open(f"{corpus}/fuzz_wave/{name}", "wb").write(b"RIFF" + struct.pack("<I", 4 + len(chunks)) + b"WAVE" + chunks)

wave("mono8.wav", 1, 8, 5)
wave("stereo16.wav", 2, 16, 3, extra_fmt=b"\0\0", list_chunk=True)
PY
