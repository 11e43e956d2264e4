#!/usr/bin/env bash
# Makes the sample photos of `make run`: small synthetic "photographs" (plasma fractals, seeded so
# that a rerun gives the same pictures) in varied sizes and orientations, some with an Exif
# thumbnail, dates and GPS positions, a few PNGs, and one corrupt file. The files are checked in;
# run this again only to change them. Needs ImageMagick and exiftool.
set -euo pipefail
cd "$(dirname "$0")"
rm -f ./*.jpg ./*.png
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# name  size  seed  orientation  thumbnail(yes/no)  date  latitude  longitude
while read -r name size seed orientation thumbnail date lat lon; do
  convert -seed "$seed" -size "$size" plasma:fractal -blur 0x1 -quality 82 -sampling-factor 2x2 -strip "$name.jpg"
  date=${date/_/ }
  args=()
  [ "$orientation" != "-" ] && args+=("-Orientation#=$orientation")
  [ "$date" != "-" ] && args+=("-DateTimeOriginal=$date" "-CreateDate=$date" -Make=Vesperon -Model=Samples)
  if [ "$lat" != "-" ]; then
    args+=("-GPSLatitude=${lat#-}" "-GPSLatitudeRef=$([ "${lat:0:1}" = - ] && echo S || echo N)")
    args+=("-GPSLongitude=${lon#-}" "-GPSLongitudeRef=$([ "${lon:0:1}" = - ] && echo W || echo E)")
  fi
  if [ "$thumbnail" = yes ]; then
    convert "$name.jpg" -thumbnail 160x160 -quality 75 -strip "$tmp/thumb.jpg"
    args+=("-ThumbnailImage<=$tmp/thumb.jpg")
  fi
  [ ${#args[@]} -gt 0 ] && exiftool -q -overwrite_original "${args[@]}" "$name.jpg"
done <<'LIST'
harbour-morning      640x480  11  -  yes  2019:05:02_06:41:10  43.2965   5.3698
harbour-noon         640x480  12  -  yes  2019:05:02_12:03:55  43.2961   5.3712
harbour-evening      800x533  13  -  yes  2019:05:02_20:15:31  43.2958   5.3689
lighthouse           480x640  14  6  yes  2019:05:03_09:12:00  43.2803   5.3512
market               720x480  15  -  no   2019:05:03_10:30:44  43.2951   5.3745
alley                480x720  16  8  yes  2019:05:03_11:02:19  -        -
cathedral            600x800  17  6  no   2019:05:04_16:45:00  43.2991   5.3636
beach                1024x683 18  -  yes  2020:08:14_15:20:05  -33.8908  151.2743
dunes                900x600  19  3  no   2020:08:15_07:55:40  -33.8921  151.2801
cliffs               800x450  20  -  yes  2020:08:16_18:33:12  -33.8567  151.2153
tide-pools           500x500  21  -  no   2020:08:17_08:01:00  -        -
sunset-a             960x540  22  -  yes  2021:01:09_17:42:18  64.1466  -21.9426
sunset-b             960x540  23  -  no   2021:01:09_17:44:02  64.1466  -21.9426
glacier              1200x800 24  -  yes  2021:01:11_13:10:10  64.0151  -16.9820
waterfall            540x960  25  6  yes  2021:01:12_11:25:37  63.6156  -19.9886
black-sand           800x600  26  2  no   2021:01:13_14:05:59  63.4045  -19.0443
aurora               1024x576 27  -  yes  2021:01:13_23:48:21  63.4186  -19.0060
forest-path          600x900  28  5  no   2022:10:01_09:15:00  -        -
mushrooms            400x300  29  -  no   2022:10:01_10:02:44  -        -
fern                 300x400  30  7  no   2022:10:01_10:30:00  -        -
lake                 1000x625 31  -  yes  2022:10:02_07:12:38  46.5547   8.5636
boat                 640x427  32  4  no   2022:10:02_08:40:13  46.5550   8.5661
ridge                1280x720 33  -  yes  2022:10:03_12:00:00  46.5771   8.4150
pano-valley          1600x400 34  -  no   2022:10:03_12:30:09  46.5798   8.4102
portrait-window      480x600  35  -  no   _                   -        -
still-life           520x390  36  -  no   _                   -        -
LIST

# A few PNGs: a screenshot-like one, one with transparency, one gray.
convert -seed 40 -size 320x200 plasma:fractal -blur 0x2 -depth 8 -colors 64 -strip diagram.png
convert -seed 41 -size 160x160 plasma:fractal \( -size 160x160 radial-gradient:white-black \) -alpha off \
  -compose CopyOpacity -composite -depth 8 -strip badge.png
convert -seed 42 -size 200x150 plasma:fractal -colorspace Gray -depth 8 -strip scan.png

# The other formats of a photo collection, each made by its own encoder from a photo above:
# a TIFF from an editor (libtiff's tiffcp), a WebP from the web (cwebp), a HEIC from a phone
# (heif-enc) and an AVIF (ImageMagick over libheif).
convert lighthouse.jpg -resize 200x -type TrueColor "$tmp/lighthouse.tif"
tiffcp -c zip "$tmp/lighthouse.tif" lighthouse-edit.tif
cwebp -quiet -q 80 -metadata exif harbour-noon.jpg -o harbour-noon-web.webp
convert market.jpg -resize 640x -type TrueColor "PNG24:$tmp/market.png"
heif-enc -q 60 --thumb 160 "$tmp/market.png" -o market-phone.heic >/dev/null
convert fern.jpg -resize 400x -quality 60 fern.avif
# No camera raw file comes with the distribution, and no converter in it writes DNG: a linear DNG
# of a photo, from ImageMagick's linear 16-bit TIFF with the DNG tags set by tiffset and exiftool
# (its colour matrix is sRGB's, so that it shows as the photo does).
convert glacier.jpg -resize 160x -colorspace RGB -depth 16 -type TrueColor -compress none "$tmp/glacier.tif"
tiffset -s 262 34892 "$tmp/glacier.tif"
exiftool -q -overwrite_original -DNGVersion=1.4.0.0 -DNGBackwardVersion=1.1.0.0 '-UniqueCameraModel=Vesperon Sample' \
  -Make=Vesperon -Model=Sample '-ColorMatrix1=3.2406 -1.5372 -0.4986 -0.9689 1.8758 0.0415 0.0557 -0.2040 1.0570' \
  -CalibrationIlluminant1#=21 '-AsShotNeutral=1 1 1' "$tmp/glacier.tif" 2>/dev/null
mv "$tmp/glacier.tif" glacier-raw.dng

# A short clip, as a phone films one: three seconds panning over the beach, faded in from black,
# with its creation time and place in the container (H.264 in MP4, by ffmpeg).
ffmpeg -v error -y -loop 1 -framerate 10 -i beach.jpg -t 3 \
  -vf "scale=480:-2,zoompan=z='1+0.004*on':x='iw/2-(iw/zoom/2)+on':y='ih/2-(ih/zoom/2)':d=1:s=320x214:fps=10,fade=in:st=0:d=0.5" \
  -c:v libx264 -preset veryslow -crf 30 -pix_fmt yuv420p \
  -metadata creation_time=2022-10-02T09:15:00Z -metadata location="+46.5552+008.5650+1850.000/" \
  -movflags +faststart beach-clip.mp4

# One corrupt file: a photo cut off in the middle of its image data.
convert -seed 43 -size 800x600 plasma:fractal -quality 82 -strip "$tmp/whole.jpg"
head -c $(( $(stat -c %s "$tmp/whole.jpg") / 2 )) "$tmp/whole.jpg" > corrupt-half-downloaded.jpg

du -sh . | cut -f1 | xargs echo "samples:"
