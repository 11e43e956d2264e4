#!/usr/bin/env bash
# The GTK host's render nodes against the offscreen host's Cairo drawing of the same window: a
# screenshot of the window under Xvfb must match the offscreen PNG within a tolerance (mean
# absolute difference per channel at most 2.5 of 255, and at most 3% of the pixels off by more
# than 64 in some channel: text and clip edges are antialiased differently), with GTK's Cairo
# renderer and with its GL renderer on Mesa's software driver. Then half of the thumbnails are let
# go, and the host's textures (or image surfaces) for them must go too.
# Usage: render-compare-on-screen-test.sh PROGRAM. Exit 77 (skipped) only when no X server starts.
set -euo pipefail
program=$1
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 800x600 "$0" "$@"
fail() { echo "FAIL: $*"; cat "$work/err" 2>/dev/null || true; exit 1; }
# Both of GTK's renderers: Cairo draws the images from Cairo nodes, GL from textures.
for renderer in cairo gl; do
  rm -f "$work/go-on" "$work/out"
  GSK_RENDERER=$renderer LIBGL_ALWAYS_SOFTWARE=1 "$program" "$work/offscreen.png" "$work/go-on" >"$work/out" 2>"$work/err" &
  pid=$!
  wait_for '^ready '
  read -r _ ox oy textures < <(grep '^ready ' "$work/out")
  [ "$textures" -eq 8 ] || fail "[$renderer] the host keeps $textures images for 8 thumbnails"
  sleep 0.3
  eval "$(xdotool getwindowgeometry --shell "$(xdotool search --sync --onlyvisible --pid "$pid" | head -1)")"
  import -window root -crop "480x300+$((X + ox))+$((Y + oy))" +repage "$work/screen.png"
  touch "$work/go-on"
  wait_for '^dropped '
  dropped=$(grep '^dropped ' "$work/out" | cut -d' ' -f2)
  [ "$dropped" -eq 4 ] || fail "[$renderer] after 4 of 8 thumbnails went, the host keeps $dropped images, not 4"
  wait "$pid" || true

  # Mean absolute error (normalised 0..1) and the count of pixels off by more than 25%; compare
  # exits 1 for pictures that differ at all.
  mae=$({ /usr/bin/compare -metric MAE "$work/screen.png" "$work/offscreen.png" null: 2>&1 || true; } | sed 's/.*(\(.*\))/\1/')
  off=$({ /usr/bin/compare -metric AE -fuzz 25% "$work/screen.png" "$work/offscreen.png" null: 2>&1 || true; } | cut -d' ' -f1)
  cp "$work/screen.png" "/tmp/render-compare-screen-$renderer.png"
  cp "$work/offscreen.png" /tmp/render-compare-offscreen.png
  echo "[$renderer] mean absolute difference $mae, pixels off by more than 25%: $off of 144000"
  awk -v m="$mae" -v o="$off" 'BEGIN { exit !(m <= 2.5 / 255 && o <= 0.03 * 144000) }' ||
    fail "[$renderer] the screenshot differs from the offscreen rendering (see /tmp/render-compare-*.png)"
done
echo "PASS"
