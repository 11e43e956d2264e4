#!/usr/bin/env bash
# `vesperon browse samples` in a real GTK 4 window under Xvfb: a click on the first cell, then
# Right and Shift+Right from xdotool; checks the selections the program reports and a screenshot
# in which the visible cells hold thumbnails. Then the offscreen --render of the same folder.
# Then Ctrl+C (file URIs on the clipboard), and a drag of a cell onto a drop target of the test's
# own, which must receive the file's URI.
# Usage: browse-on-screen-test.sh VESPERON SAMPLES-DIR DROP-TARGET. Exit 77 (skipped) only when no
# X server can be started.
set -euo pipefail
vesperon=$1
samples=$2
droptarget=$3
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1400x1024 "$0" "$@"

"$vesperon" browse "$samples" --report >"$work/out" 2>"$work/err" &
pid=$!
wait_for '^cell 5 '
read -r _ ox oy < <(grep '^ready ' "$work/out")
read -r _ _ x0 y0 _ < <(grep '^cell 0 ' "$work/out")
# The photo copied and dragged below is diagram.png, wherever the folder's order puts it.
read -r _ d x2 y2 _ < <(grep '^cell [0-9]* .* diagram.png$' "$work/out")
[ -n "${d:-}" ] || { echo "FAIL: diagram.png is not among the first cells"; cat "$work/out"; exit 1; }
window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)

xdotool mousemove --window "$window" $((ox + x0)) $((oy + y0)) click 1
wait_for '^selection 1 0$'
xdotool key Right
wait_for '^selection 1 1$'
xdotool key shift+Right
wait_for '^selection 2 1,2$'

# diagram.png's cell shows its thumbnail: a patch of a picture has many colours, where the
# background, the selection tint or a placeholder have a few.
sleep 0.5
eval "$(xdotool getwindowgeometry --shell "$window")"
colours=$(import -window root -crop "24x24+$((X + ox + x2 - 12))+$((Y + oy + y2 - 12))" -depth 8 txt:- |
          grep -o '#[0-9A-F]\{6\}' | sort -u | wc -l)
if [ "$colours" -lt 40 ]; then
  import -window root /tmp/browse-failure.png
  echo "FAIL: diagram.png's cell shows $colours colours, no thumbnail (screenshot in /tmp/browse-failure.png)"; exit 1
fi
# Copy: the clipboard offers the file as text/uri-list.
xdotool mousemove --window "$window" $((ox + x2)) $((oy + y2)) click 1
wait_for "^selection 1 $d\$"
xdotool key ctrl+c
wait_for '^copied 1$'
if command -v xclip >/dev/null; then
  # GTK takes the X selection on its next turn of the main loop: ask until it answers.
  copied=""
  for _ in 1 2 3 4 5; do
    sleep 0.3
    copied=$(timeout 3 xclip -o -selection clipboard -t text/uri-list </dev/null 2>/dev/null | tr -d '\r' || true)
    [ -n "$copied" ] && break
  done
  [[ "$copied" == file://*/diagram.png ]] || { echo "FAIL: the clipboard holds '$copied'"; exit 1; }
fi

# Drag the selected cell out onto another program's window, placed to the right of ours.
"$droptarget" >"$work/drops" 2>/dev/null &
dpid=$!
for _ in $(seq 200); do grep -q '^ready' "$work/drops" && break; sleep 0.05; done
target=$(xdotool search --sync --onlyvisible --name "^drop target" | head -1)
xdotool windowmove "$target" 1080 100
sleep 0.3
xdotool mousemove --window "$window" $((ox + x2)) $((oy + y2)) mousedown 1 sleep 0.2 \
  mousemove --window "$window" $((ox + x2 + 30)) $((oy + y2 + 30)) sleep 0.2 \
  mousemove 1150 200 sleep 0.3 mousemove 1180 250 sleep 0.3 mouseup 1
wait_for '^drag-ended '
for _ in $(seq 100); do grep -q '^dropped' "$work/drops" && break; sleep 0.05; done
dropped=$(grep '^dropped ' "$work/drops" | head -1 | cut -d' ' -f2-)
[[ "$dropped" == file://*/diagram.png ]] || { echo "FAIL: the drop target received '$dropped'"; cat "$work/drops"; exit 1; }
kill "$dpid" 2>/dev/null || true
kill "$pid"; wait "$pid" 2>/dev/null || true

# The viewer: a double-click opens it; a colour dot labels the file in its XMP sidecar; Escape
# returns. On a copy of three samples, so that the sidecar is written outside the source tree.
mkdir -p "$work/photos"
cp "$samples/badge.png" "$samples/diagram.png" "$samples/scan.png" "$work/photos/"
screen_test_window_manager  # full screen is the window manager's to grant
"$vesperon" browse "$work/photos" --report --slideshow-interval 2 >"$work/out" 2>"$work/err" &
pid=$!
wait_for '^cell 1 '
read -r _ ox oy < <(grep '^ready ' "$work/out")
read -r _ _ x1 y1 _ < <(grep '^cell 1 ' "$work/out")
window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)
xdotool mousemove --window "$window" $((ox + x1)) $((oy + y1)) click --repeat 2 --delay 80 1
wait_for '^viewer open .*/diagram.png$'
wait_for '^label-dot 1 '
read -r _ _ dx dy < <(grep '^label-dot 1 ' "$work/out")
xdotool mousemove --window "$window" $((ox + dx)) $((oy + dy)) click 1
wait_for '^label 1 .*/diagram.png$'
grep -q 'Label' "$work/photos/diagram.xmp" && grep -q 'Red' "$work/photos/diagram.xmp" ||
  { echo "FAIL: the sidecar holds no red label:"; cat "$work/photos/diagram.xmp"; exit 1; }
# The photo's own pixels replace the thumbnail; Right shows the next photo of the grid, whose
# selection follows, and the title says where it is; Left comes back; End goes to the last.
wait_for '^viewer sharp 320x200 .*/diagram.png$'
xdotool key Right
wait_for '^viewer open .*/scan.png$'
wait_for '^selection 1 2$'
for _ in $(seq 40); do xdotool search --name '^scan.png .* 3 of 3$' >/dev/null && break; sleep 0.05; done
xdotool search --name '^scan.png .* 3 of 3$' >/dev/null ||
  { echo "FAIL: the title is '$(xdotool getwindowname "$window")', not scan.png, 3 of 3"; exit 1; }
wait_for '^viewer sharp [0-9]*x[0-9]* .*/scan.png$'
xdotool key Left
wait_for_last() {
  for _ in $(seq 100); do [ "$(grep "$1" "$work/out" | tail -1)" = "$2" ] && return 0; sleep 0.05; done
  echo "FAIL: the last '$1' line is '$(grep "$1" "$work/out" | tail -1)', not '$2'"; exit 1
}
wait_for_last '^viewer open ' "viewer open $work/photos/diagram.png"
xdotool key End
wait_for_last '^viewer open ' "viewer open $work/photos/scan.png"
# i shows the information panel, and again hides it.
xdotool key i
wait_for '^viewer info shown$'
wait_for '^viewer info-rows scan.png | Dimensions: 200 × 150'
xdotool key i
wait_for '^viewer info hidden$'
# F5 plays a slideshow from the first photo; any key stops it where it is.
xdotool key Home
wait_for_last '^viewer open ' "viewer open $work/photos/badge.png"
xdotool key F5
wait_for '^viewer slideshow on$'
wait_for_last '^viewer open ' "viewer open $work/photos/diagram.png"
xdotool key x
wait_for '^viewer slideshow off$'
sleep 2.4
wait_for_last '^viewer open ' "viewer open $work/photos/diagram.png"
xdotool key End
wait_for_last '^viewer open ' "viewer open $work/photos/scan.png"
# A photo deleted since the grid was read is passed over.
mv "$work/photos/diagram.png" "$work/diagram.png"
xdotool key Left
wait_for "^viewer skipped $work/photos/diagram.png: it is gone$"
wait_for_last '^viewer open ' "viewer open $work/photos/badge.png"
mv "$work/diagram.png" "$work/photos/diagram.png"
xdotool key End
wait_for_last '^viewer open ' "viewer open $work/photos/scan.png"
# F11 fills the screen; the first Escape leaves the full screen, the second the viewer.
xdotool key F11
wait_for '^viewer fullscreen on$'
if [ -n "${wm:-}" ]; then
  for _ in $(seq 40); do
    eval "$(xdotool getwindowgeometry --shell "$window")"
    [ "$WIDTH" = 1400 ] && [ "$HEIGHT" = 1024 ] && break
    sleep 0.05
  done
  [ "$WIDTH" = 1400 ] && [ "$HEIGHT" = 1024 ] || { echo "FAIL: full screen is ${WIDTH}x$HEIGHT, not 1400x1024"; exit 1; }
fi
xdotool key Escape
wait_for '^viewer fullscreen off$'
# Escape returns to the grid with the photo shown last selected.
xdotool key Escape
wait_for '^viewer closed$'
wait_for_last '^selection ' 'selection 1 2'
xdotool key Left
wait_for_last '^selection ' 'selection 1 1'
kill "$pid"; wait "$pid" 2>/dev/null || true

# Offscreen: the first screen as a PNG, once its thumbnails arrived.
"$vesperon" browse "$samples" --render "$work/first.png" --size 800x600 >"$work/render"
grep -q "$(find "$samples" -maxdepth 1 -type f ! -name '*.sh' | wc -l) photos" "$work/render" || { echo "FAIL: --render said: $(cat "$work/render")"; exit 1; }
[ "$(head -c 8 "$work/first.png" | od -An -tx1 | tr -d ' ')" = "89504e470d0a1a0a" ] || { echo "FAIL: no PNG"; exit 1; }
# The first group's header shows whole below the top edge: a margin with no text above it, then
# its dark title. (The grid once sat under the top edge by the status line's height.)
top=$(/usr/bin/convert "$work/first.png" -crop 400x10+0+0 -format '%[fx:minima.intensity]' info:)
title=$(/usr/bin/convert "$work/first.png" -crop 400x24+0+12 -format '%[fx:minima.intensity]' info:)
awk -v t="$top" -v h="$title" 'BEGIN { exit !(t > 0.8 && h < 0.4) }' ||
  { echo "FAIL: the first header is not whole (top rows $top, title rows $title)"; exit 1; }
echo "PASS: selections reported in order; $colours colours in diagram.png's cell; copied and dropped $dropped; viewer opened, labelled, sharp, walked next, previous and to the end, showed its information, passed over a deleted photo, played and stopped a slideshow, filled the screen, closed on the photo shown last; offscreen render written"
