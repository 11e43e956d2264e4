#!/usr/bin/env bash
# Thumbnail throughput of `vesperon thumbs --size 256` per format — HEIC, AVIF, WebP, TIFF —
# against vipsthumbnail (two processes in parallel, each given half the files in one call) on the
# same files, in one run; then a second `vesperon thumbs` run served from the desktop's shared
# thumbnail cache (written by the first with --share) against the first. Ratios are printed.
#
# The photo folders (20 photographic 2000×1500 images per format, each format written by its own
# encoder from the same four pictures) are made once under the build folder and reused.
#
#   bash bench/thumbs-formats.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
bin="$(cd "$build" && pwd)/bin/vesperon"
work="$(cd "$build" && pwd)/bench-formats"
count=20
im=$(command -v convert-im6.q16 || echo /usr/bin/convert)

if [ ! -f "$work/.complete" ]; then
  rm -rf "$work"
  mkdir -p "$work"/{heic,avif,webp,tiff,base}
  for s in 1 2 3 4; do
    "$im" -seed "$s" -size 500x375 plasma:fractal -blur 0x0.6 -resize 2000x1500 -attenuate 0.4 +noise Gaussian \
      -type TrueColor "PNG24:$work/base/$s.png"
    heif-enc -q 70 --thumb 320 "$work/base/$s.png" -o "$work/base/$s.heic" >/dev/null
    "$im" "$work/base/$s.png" -quality 60 "$work/base/$s.avif"
    cwebp -quiet -q 80 "$work/base/$s.png" -o "$work/base/$s.webp"
    "$im" "$work/base/$s.png" "$work/base/$s-plain.tif"
    tiffcp -c lzw "$work/base/$s-plain.tif" "$work/base/$s.tif"
  done
  for i in $(seq -w 1 $count); do
    s=$(( (10#$i % 4) + 1 ))
    cp "$work/base/$s.heic" "$work/heic/photo-$i.heic"
    cp "$work/base/$s.avif" "$work/avif/photo-$i.avif"
    cp "$work/base/$s.webp" "$work/webp/photo-$i.webp"
    cp "$work/base/$s.tif" "$work/tiff/photo-$i.tif"
  done
  touch "$work/.complete"
fi

source "$(dirname "$0")/timing.sh"

# Each measurement keeps the desktop's cache of its own, empty, so no run is served from another's.
export XDG_CACHE_HOME="$work/xdg-cache"
printf '%-6s %14s %18s %8s\n' format "vesperon f/s" "vipsthumbnail f/s" ratio
for format in heic avif webp tiff; do
  rm -rf "$XDG_CACHE_HOME" "$work/out"
  mkdir -p "$work/out/vips"
  t0=$(now)
  "$bin" thumbs "$work/$format" --size 256 --out "$work/out/vesperon" >/dev/null 2>&1
  ours=$(rate $count "$(elapsed "$t0")")
  mapfile -t files < <(ls "$work/$format"/*)
  n=${#files[@]}
  t0=$(now)
  printf '%s\n' "${files[@]:0:n/2}" | xargs -d '\n' vipsthumbnail --size 256 -o "$work/out/vips/%s.jpg" 2>/dev/null &
  printf '%s\n' "${files[@]:n/2}" | xargs -d '\n' vipsthumbnail --size 256 -o "$work/out/vips/%s.jpg" 2>/dev/null &
  wait
  vips=$(rate $count "$(elapsed "$t0")")
  printf '%-6s %14s %18s %7sx\n' "$format" "$ours" "$vips" "$(ratio "$ours" "$vips")"
done

# The shared cache: the first run writes it (--share), the second takes it.
rm -rf "$XDG_CACHE_HOME" "$work/out"
all=$(ls "$work"/{heic,avif,webp,tiff}/* | wc -l)
mkdir -p "$work/all"
for format in heic avif webp tiff; do cp -n "$work/$format"/* "$work/all/" 2>/dev/null || true; done
t0=$(now)
"$bin" thumbs "$work/all" --size 256 --share --out "$work/out/first" >/dev/null 2>&1
first=$(rate "$all" "$(elapsed "$t0")")
t0=$(now)
"$bin" thumbs "$work/all" --size 256 --out "$work/out/second" >/dev/null 2>&1
second=$(rate "$all" "$(elapsed "$t0")")
echo "shared cache: first run (--share) $first f/s, second run $second f/s: $(ratio "$second" "$first")x (goal >= 10x)"
