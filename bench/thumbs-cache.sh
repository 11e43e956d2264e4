#!/usr/bin/env bash
# `vesperon thumbs --cache` over the photo folder of bench/thumbs.sh: the first run makes the
# thumbnails and stores them in a fresh persistent image cache, the second answers from it without
# decoding the originals. Whole-process times, start-up included. Goal: the second run at least
# 10x the first run's files per second.
#
#   bash bench/thumbs-cache.sh [BUILD_DIR [PHOTO_FOLDER]]
set -euo pipefail
build=${1:-build}
bin="$(cd "$build" && pwd)/bin/vesperon"
work="$(cd "$build" && pwd)/bench-thumbs"
photos=${2:-$work/photos}
if [ -z "${2:-}" ] && [ ! -f "$photos/.complete" ]; then
  bash "$(dirname "$0")/thumbs.sh" "$build" > /dev/null  # makes the photo folder
fi
count=$(find "$photos" -maxdepth 1 -name '*.jpg' | wc -l)
mkdir -p "$work"
cache="$work/image-cache"
rm -rf "$cache" "$work/out-cache"

source "$(dirname "$0")/timing.sh"
timed() {
  local t0; t0=$(now)
  "$bin" thumbs "$photos" --size 256 --cache-dir "$cache" --out "$work/out-cache/$1" > "$work/cache-$1.log" 2>&1
  rate "$count" "$(elapsed "$t0")"
}
first=$(timed first)
second=$(timed second)

echo "vesperon thumbs --cache over $count photos at 256 px (files per second):"
echo "  first run, fills the cache     $first"
echo "  second run, from the cache     $second   = $(awk -v a="$second" -v b="$first" 'BEGIN { printf "%.1f", a / b }')x the first (goal: at least 10x)"
tail -1 "$work/cache-second.log"
