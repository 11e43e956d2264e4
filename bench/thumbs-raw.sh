#!/usr/bin/env bash
# Thumbnail throughput on camera raw files: `vesperon thumbs --size 256` against the usual way
# round without a raw thumbnailer, exiftool extracting each file's embedded preview
# (`-b -PreviewImage`) and vipsthumbnail making the thumbnail of what was extracted, on the same
# files in one run. Both sides use both cores: vesperon its own workers, exiftool and
# vipsthumbnail two processes in parallel, each given half the files. The ratio is printed.
#
# The raw folder (20 DNG files, each 2400×1600 16-bit linear sensor data — 23 MB, the size of a
# camera's raw file — with a 1600×1067 JPEG preview from cjpeg and a 256×171 thumbnail in IFD0,
# laid out by the plug-in tests' make-preview-dng from four photographic images) is made once
# under the build folder and reused.
#
#   bash bench/thumbs-raw.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
bin="$(cd "$build" && pwd)/bin/vesperon"
generator="$(cd "$build" && pwd)/bin/make-preview-dng"
work="$(cd "$build" && pwd)/bench-raw"
count=20
im=$(command -v convert-im6.q16 || echo /usr/bin/convert)

if [ ! -f "$work/.complete" ]; then
  rm -rf "$work"
  mkdir -p "$work"/{raw,base}
  for s in 1 2 3 4; do
    "$im" -seed "$s" -size 600x400 plasma:fractal -blur 0x0.6 -resize 2400x1600 -attenuate 0.4 +noise Gaussian \
      -type TrueColor "PNG24:$work/base/$s.png"
    "$im" "$work/base/$s.png" -colorspace RGB -depth 16 -type TrueColor -compress none -strip "$work/base/$s-linear.tif"
    "$im" "$work/base/$s.png" -resize 1600x1067 -type TrueColor ppm:- | cjpeg -quality 90 >"$work/base/$s-preview.jpg"
    "$im" "$work/base/$s.png" -resize 256x171 -type TrueColor -depth 8 -compress none -strip "$work/base/$s-thumb.tif"
    "$generator" "$work/base/$s-linear.tif" "$work/base/$s-preview.jpg" "$work/base/$s-thumb.tif" "$work/base/$s.dng"
    exiftool -q -overwrite_original -DNGVersion=1.4.0.0 -DNGBackwardVersion=1.1.0.0 '-UniqueCameraModel=Vesperon Bench' \
      -Make=Vesperon -Model=Bench '-ColorMatrix1=3.2406 -1.5372 -0.4986 -0.9689 1.8758 0.0415 0.0557 -0.2040 1.0570' \
      -CalibrationIlluminant1#=21 '-AsShotNeutral=1 1 1' "$work/base/$s.dng"
  done
  for i in $(seq -w 1 $count); do
    s=$(( (10#$i % 4) + 1 ))
    cp "$work/base/$s.dng" "$work/raw/photo-$i.dng"
  done
  # Written out before timing, so that neither side pays for the copies' write-back.
  sync
  touch "$work/.complete"
fi

source "$(dirname "$0")/timing.sh"

# The desktop's thumbnail cache of its own, empty, so that vesperon decodes every file.
export XDG_CACHE_HOME="$work/xdg-cache"
rm -rf "$XDG_CACHE_HOME" "$work/out"
mkdir -p "$work/out"/{previews,vips}
mapfile -t files < <(ls "$work/raw"/*.dng)
n=${#files[@]}

t0=$(now)
"$bin" thumbs "$work/raw" --size 256 --out "$work/out/vesperon" >/dev/null 2>&1
ours_time=$(elapsed "$t0")
made=$(find "$work/out/vesperon" -type f | wc -l)
[ "$made" -eq "$n" ] || { echo "vesperon made $made thumbnails of $n files" >&2; exit 1; }

peer() {
  local previews=()
  exiftool -q -b -PreviewImage -w "$work/out/previews/%f.jpg" "$@"
  for f in "$@"; do previews+=("$work/out/previews/$(basename "${f%.*}").jpg"); done
  vipsthumbnail --size 256 -o "$work/out/vips/%s.jpg" "${previews[@]}"
}
t0=$(now)
peer "${files[@]:0:n/2}" 2>/dev/null &
peer "${files[@]:n/2}" 2>/dev/null &
wait
peer_time=$(elapsed "$t0")
made=$(find "$work/out/vips" -type f | wc -l)
[ "$made" -eq "$n" ] || { echo "exiftool + vipsthumbnail made $made thumbnails of $n files" >&2; exit 1; }

ours=$(rate "$n" "$ours_time")
theirs=$(rate "$n" "$peer_time")
printf '%-34s %8s\n' "raw (DNG, 23 MB, 1600 px preview)" "files/s"
printf '%-34s %8s\n' "vesperon thumbs --size 256" "$ours"
printf '%-34s %8s\n' "exiftool -PreviewImage + vips" "$theirs"
echo "raw: vesperon / (exiftool + vipsthumbnail) = $(ratio "$ours" "$theirs")x"
