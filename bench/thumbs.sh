#!/usr/bin/env bash
# Thumbnail throughput of `vesperon thumbs` against vipsthumbnail and ImageMagick, in one run.
#
# The photo folder (200 photographic 4000×3000 JPEGs, quality 90, 4:2:0; every second one with a
# 160×120 Exif thumbnail) is made once under the build folder and reused. Every tool runs on both
# cores: vesperon with its own workers, the others as two processes in parallel, each given half
# the files, so that start-up is not counted against a tool that takes many files per process.
# libjpeg-turbo's own decode at 1/8 scale bounds what any thumbnailer can reach.
#
#   bash bench/thumbs.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
bin="$(cd "$build" && pwd)/bin/vesperon"
work="$(cd "$build" && pwd)/bench-thumbs"
photos="$work/photos"
count=200
# ImageMagick's own binary: a `convert` earlier on PATH may be a wrapper that passes calls on,
# and its start-up would be counted against ImageMagick once per file.
magick_bin=$(command -v convert-im6.q16 || { [ -x /usr/bin/convert ] && echo /usr/bin/convert; } || command -v convert)

if [ ! -f "$photos/.complete" ]; then
  rm -rf "$photos"
  mkdir -p "$photos"
  # Four distinct photographs, copied: decoding cost depends on content, not on uniqueness.
  for s in 1 2 3 4; do
    "$magick_bin" -seed "$s" -size 1000x750 plasma:fractal -blur 0x0.6 -resize 4000x3000 \
      -attenuate 0.4 +noise Gaussian -quality 90 -sampling-factor 2x2 -strip "$work/base-$s.jpg"
    "$magick_bin" "$work/base-$s.jpg" -thumbnail 160x120 -quality 80 -strip "$work/thumb-$s.jpg"
  done
  for i in $(seq -w 1 $count); do
    s=$(( (10#$i % 4) + 1 ))
    cp "$work/base-$s.jpg" "$photos/photo-$i.jpg"
    if [ $(( 10#$i % 2 )) -eq 0 ]; then
      exiftool -q -overwrite_original "-ThumbnailImage<=$work/thumb-$s.jpg" "$photos/photo-$i.jpg"
    fi
  done
  touch "$photos/.complete"
fi

mapfile -t all < <(ls "$photos"/*.jpg)
mapfile -t embedded < <(ls "$photos"/*.jpg | awk 'NR % 2 == 0')
half() { local -n list=$1; local n=${#list[@]}; if [ "$2" = 1 ]; then printf '%s\n' "${list[@]:0:n/2}"; else printf '%s\n' "${list[@]:n/2}"; fi; }

source "$(dirname "$0")/timing.sh"

# Two processes in parallel, each given half the list in one invocation.
twoWay() {
  local listName=$1; shift
  half "$listName" 1 | xargs -d '\n' "$@" &
  half "$listName" 2 | xargs -d '\n' "$@" &
  wait
}

out="$work/out"

# libjpeg-turbo's bound: decode at 1/8 scale, two processes at a time. djpeg takes one file per
# process, so its figure still carries a process start per file (a few milliseconds).
t0=$(now)
printf '%s\n' "${all[@]}" | xargs -d '\n' -P 2 -n 1 djpeg -scale 1/8 -outfile /dev/null
bound=$(rate $count "$(awk -v a="$t0" -v b="$(now)" 'BEGIN { print b - a }')")

# vesperon thumbs --size 256, with its peak memory.
rm -rf "$out"; mkdir -p "$out"
t0=$(now)
/usr/bin/time -f '%M' -o "$work/vesperon.rss" "$bin" thumbs "$photos" --size 256 --out "$out/vesperon" > "$work/vesperon.log" 2>&1
ours=$(rate $count "$(awk -v a="$t0" -v b="$(now)" 'BEGIN { print b - a }')")
rss=$(( $(cat "$work/vesperon.rss") / 1024 ))

# vipsthumbnail --size 256.
mkdir -p "$out/vips"
t0=$(now)
twoWay all vipsthumbnail --size 256 -o "$out/vips/%s.jpg"
vips=$(rate $count "$(awk -v a="$t0" -v b="$(now)" 'BEGIN { print b - a }')")

# ImageMagick convert -thumbnail 256x256, one file per process, two at a time.
mkdir -p "$out/magick"
t0=$(now)
printf '%s\n' "${all[@]}" | OUT="$out/magick" MAGICK="$magick_bin" xargs -d '\n' -P 2 -n 1 \
  sh -c '"$MAGICK" "$1" -thumbnail 256x256 "$OUT/$(basename "$1")"' _
magick=$(rate $count "$(awk -v a="$t0" -v b="$(now)" 'BEGIN { print b - a }')")

# The embedded thumbnails at 128: no full decode for vesperon.
n=${#embedded[@]}
mkdir -p "$work/embedded" "$out/vips128"
rm -f "$work/embedded"/*.jpg
for f in "${embedded[@]}"; do ln -sf "$f" "$work/embedded/"; done
t0=$(now)
"$bin" thumbs "$work/embedded" --size 128 --out "$out/vesperon128" > "$work/vesperon128.log" 2>&1
ours128=$(rate "$n" "$(awk -v a="$t0" -v b="$(now)" 'BEGIN { print b - a }')")
t0=$(now)
twoWay embedded vipsthumbnail --size 128 -o "$out/vips128/%s.jpg"
vips128=$(rate "$n" "$(awk -v a="$t0" -v b="$(now)" 'BEGIN { print b - a }')")

echo "thumbnails of $count 4000x3000 JPEGs at 256 px, both cores (files per second):"
echo "  djpeg -scale 1/8 (bound)   $bound"
echo "  vesperon thumbs            $ours   = $(ratio "$ours" "$vips")x vipsthumbnail, $(ratio "$ours" "$magick")x ImageMagick, $(ratio "$ours" "$bound") of the bound"
echo "  vipsthumbnail              $vips"
echo "  ImageMagick convert        $magick"
echo "embedded Exif thumbnails at 128 px ($n files):"
echo "  vesperon thumbs            $ours128   = $(ratio "$ours128" "$vips128")x vipsthumbnail"
echo "  vipsthumbnail              $vips128"
echo "peak memory of vesperon thumbs: $rss MB (goal: below 150 MB)"
tail -1 "$work/vesperon.log"
