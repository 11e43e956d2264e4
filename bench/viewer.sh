#!/usr/bin/env bash
# The viewer of `vesperon browse`, offscreen on real photos (bench/viewer/ViewerBench.cpp):
#   - the next 24-megapixel JPEG sharp at fit, with look-ahead against without (goal <= 50 ms);
#   - the 1:1 centre of a 100-megapixel JPEG against libvips decoding it whole to memory
#     (`vips copy` to a memory image; goal <= 0.25x), with the peak memory of each;
#   - resident memory over a walk through 200 photos (goal: flat).
# The photos are made once under the build folder from the bundled samples, scaled up by libvips
# (photographic content, quality 90, 4:2:0), and reused.
#
#   bash bench/viewer.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
bin="$(cd "$build" && pwd)/bin/bench_viewer"
work="$(cd "$build" && pwd)/bench-viewer"
samples="$(cd "$(dirname "$0")/.." && pwd)/samples"
[ -x "$bin" ] || { echo "bench_viewer is not built (Google Benchmark missing?)"; exit 1; }
command -v vips >/dev/null || { echo "vips (libvips-tools) is needed to make the photos"; exit 1; }

if [ ! -f "$work/.complete" ]; then
  rm -rf "$work"
  mkdir -p "$work/next" "$work/walk" "$work/large"
  i=0
  for sample in "$samples"/*.jpg; do
    case "$sample" in *corrupt*|*truncated*) continue ;; esac
    width=$(vipsheader -f width "$sample") || continue
    height=$(vipsheader -f height "$sample")
    i=$((i + 1))
    vips resize "$sample" "$work/next/photo-$(printf %02d $i).jpg[Q=90,strip]" "$(echo "sqrt(24000000 / ($width * $height))" | bc -l)"
    [ $i -ge 12 ] && break
  done
  # 200 photos to walk through, the twelve over and over under names of their own.
  n=0
  while [ $n -lt 200 ]; do
    for photo in "$work/next"/*.jpg; do
      n=$((n + 1))
      [ $n -gt 200 ] && break
      ln "$photo" "$work/walk/walk-$(printf %03d $n).jpg"
    done
  done
  first=$(ls "$samples"/*.jpg | grep -v -e corrupt -e truncated | head -1)
  width=$(vipsheader -f width "$first")
  height=$(vipsheader -f height "$first")
  vips resize "$first" "$work/large/large.jpg[Q=90,strip]" "$(echo "sqrt(100000000 / ($width * $height))" | bc -l)"
  touch "$work/.complete"
fi
vipsheader "$work/next"/photo-0[12].jpg "$work/large/large.jpg"
"$bin" next "$work/next"
"$bin" centre "$work/large/large.jpg"
"$bin" walk "$work/walk"
