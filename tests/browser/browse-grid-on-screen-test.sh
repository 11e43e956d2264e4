#!/usr/bin/env bash
# The grid of `vesperon browse` on screen under Xvfb and openbox, driven by xdotool: Ctrl with a
# wheel notch grows the thumbnails (and does not scroll), Ctrl+minus shrinks them, the status
# bar's slider sets them, and the next run opens at the size left. A filter that narrows the grid
# marks the search button, and the status line's "Clear filter" link ends it. F9 shows the places
# sidebar, whose Pictures folder opens with a click, and which lists a card mounted while it shows.
# Screenshots are left in the work folder (kept on failure) and copied to /tmp/browse-grid-*.png.
# Usage: browse-grid-on-screen-test.sh VESPERON SAMPLES-DIR. Exit 77 (skipped) only when no X
# server can be started.
set -euo pipefail
vesperon=$1
samples=$2
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1280x900 "$0" "$@"
screen_test_window_manager

mkdir -p "$work/photos"
cp "$samples"/*.jpg "$work/photos/"
# The desktop's Pictures folder, as xdg-user-dirs names it.
mkdir -p "$work/pictures" "$XDG_CONFIG_HOME"
cp "$samples/fern.jpg" "$work/pictures/"
echo "XDG_PICTURES_DIR=\"$work/pictures\"" >"$XDG_CONFIG_HOME/user-dirs.dirs"
fail() { import -window root /tmp/browse-grid-failure.png 2>/dev/null || true; echo "FAIL: $*"; cat "$work/out" "$work/err"; exit 1; }

start() {
  : >"$work/out"
  "$vesperon" browse "$work/photos" --size 1000x700 --report >"$work/out" 2>"$work/err" &
  pid=$!
  wait_for '^slider '
  window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)
  read -r _ ox oy < <(grep '^ready ' "$work/out")
  read -r _ sx0 sx1 sy < <(grep '^slider ' "$work/out")
}

start
grep -q '^scale 0.500$' "$work/out" || fail "the first run does not start at the default size"
read -r _ _ cx cy _ < <(grep '^cell 0 ' "$work/out")
xdotool mousemove --window "$window" $((ox + cx)) $((oy + cy))
sleep 0.2
xdotool keydown ctrl click 4 keyup ctrl
wait_for '^scale 0.550$'
sleep 0.3
import -window root "$work/ctrl-wheel.png"
xdotool key ctrl+minus
wait_for '^scale 0.458$'
# The slider: a click at its right end gives the largest thumbnails.
xdotool mousemove --window "$window" $((ox + sx1 - 1)) $((oy + sy)) click 1
wait_for '^scale 0.99[0-9]$\|^scale 1.000$'
sleep 0.5
import -window root "$work/slider-largest.png"
# Then dragged to its left end: the smallest.
xdotool mousemove --window "$window" $((ox + (sx0 + sx1) / 2)) $((oy + sy)) mousedown 1 sleep 0.1 \
  mousemove --window "$window" $((ox + sx0 - 40)) $((oy + sy)) sleep 0.2 mouseup 1
wait_for '^scale 0.250$'
sleep 0.5
import -window root "$work/slider-smallest.png"
xdotool key ctrl+0
wait_for_last() { for _ in $(seq 100); do [ "$(grep '^scale' "$work/out" | tail -1)" = "$1" ] && return 0; sleep 0.05; done; fail "last scale is not $1"; }
wait_for_last 'scale 0.500'
xdotool mousemove --window "$window" $((ox + sx1 + 40)) $((oy + sy)) click 1  # beside the slider: nothing
xdotool mousemove --window "$window" $((ox + (sx0 + 3 * sx1) / 4)) $((oy + sy)) click 1
wait_for_last 'scale 0.812'

# A rubber band: the status line counts what it holds while it is dragged, before the button is up.
xdotool mousemove --window "$window" $((ox + 3)) $((oy + 60)) mousedown 1 sleep 0.2 \
  mousemove --window "$window" $((ox + 300)) $((oy + 200)) sleep 0.2 mousemove --window "$window" $((ox + 700)) $((oy + 300))
wait_for '^status .*, [0-9]* photos* selected ([0-9.]* [kMG]B)$'
sleep 0.3
import -window root "$work/rubber-band.png"
xdotool mouseup 1
wait_for '^selection [1-9]'
# A filter that narrows marks the search button and the status line ("1 of 27 photos"); the
# status line's link clears it, the bar's ticks with it.
xdotool key ctrl+f
sleep 0.5
xdotool type --delay 40 beach
wait_for '^filter-button marked$'
wait_for '^clear-filter-link '
sleep 0.8
import -window root "$work/filter-narrowing.png"
read -r _ lx _ < <(grep "^clear-filter-link " "$work/out" | tail -1)  # at the slider's height, the bar closed
xdotool mousemove --window "$window" $((ox + lx)) $((oy + sy)) click 1
wait_for '^filter cleared$'
wait_for '^filter-button plain$'
grep -q '^filter 27 photos: none$' "$work/out" || fail "the grid does not show all 27 photos again"
sleep 0.5
import -window root "$work/filter-cleared.png"
kill "$pid"; wait "$pid" 2>/dev/null || true

# The next run opens at the size left.
start
grep -q '^scale 0.812$' "$work/out" || fail "the second run does not open at the size left: $(grep '^scale' "$work/out")"

# F9: the places sidebar lists the Pictures folder and the folder opened before; a click opens one.
xdotool key F9
wait_for '^sidebar shown$'
grep -q "^places | Places: $work/pictures | Recent: $work/photos\$" "$work/out" || fail "the places are $(grep '^places' "$work/out")"
sleep 0.5
import -window root "$work/sidebar.png"
read -r _ _ px py < <(grep '^place 0 ' "$work/out" | tail -1)
xdotool mousemove --window "$window" $((ox + px)) $((oy + py)) click 1
wait_for "^folder $work/pictures 1 photos\$"
sleep 0.5
import -window root "$work/sidebar-pictures.png"
# While the sidebar shows, a card with photos mounted joins its list, and leaves it when unmounted
# (where this test may mount: a folder bound under /mnt, as a card reader's would be).
volume=/mnt/vesperon-places-$$
mkdir -p "$work/card/DCIM/100TEST"
cp "$samples/fern.jpg" "$work/card/DCIM/100TEST/"
if mkdir -p "$volume" 2>/dev/null && mount --bind "$work/card" "$volume" 2>/dev/null; then
  unmount() { umount "$volume" 2>/dev/null; rmdir "$volume" 2>/dev/null || true; }
  for _ in $(seq 50); do grep -q "^places .*| Volumes: $volume\$" "$work/out" && break; sleep 0.1; done
  grep -q "^places .*| Volumes: $volume\$" "$work/out" || { unmount; fail "the mounted card does not show: $(grep '^places' "$work/out" | tail -1)"; }
  sleep 0.3
  import -window root "$work/sidebar-card.png"
  unmount
  for _ in $(seq 50); do tail -n 20 "$work/out" | grep '^places' | tail -1 | grep -qv "$volume" && break; sleep 0.1; done
  grep '^places' "$work/out" | tail -1 | grep -q "$volume" && fail "the unmounted card stays: $(grep '^places' "$work/out" | tail -1)"
else
  rmdir "$volume" 2>/dev/null || true
  echo "the mounted card is not tried: no folder can be mounted here"
fi
xdotool key F9
wait_for '^sidebar hidden$'
kill "$pid"; wait "$pid" 2>/dev/null || true
for f in "$work"/*.png; do cp "$f" "/tmp/browse-grid-$(basename "$f")"; done
echo "PASS"
