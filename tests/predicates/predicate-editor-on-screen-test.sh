#!/usr/bin/env bash
# MCGtkPredicateEditor in a small window of its own under Xvfb, driven by xdotool: typing in a
# row's field turns the row on, a second row joins with AND, "Any" in the compound pop-up makes it
# OR, a pop-up's choice turns its row on, and the check buttons take rows out until no predicate
# is left. After each step the predicate the editor reports must let through exactly the expected
# ones of three fixed files (the window's program evaluates it).
# Usage: predicate-editor-on-screen-test.sh PROGRAM. Exit 77 (skipped) only when no X server can start.
set -euo pipefail
program=$1
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1024x768 "$0" "$@"
screen_test_window_manager

"$program" >"$work/out" 2>"$work/err" &
pid=$!
wait_for '^ready$'
window=$(xdotool search --sync --onlyvisible --name '^Predicate editor$' | head -1)
place() { grep "^at $1" "$work/out" | head -1 | awk '{ print $(NF-1), $NF }'; }
click() {  # what (as in "at WHAT ... X Y")
  local x y
  read -r x y < <(place "$1")
  xdotool mousemove --window "$window" "$x" "$y" click 1
}
# The last predicate line must be this one (a pattern).
expect() {
  wait_for "^predicate $1\$"
  local last
  last=$(grep '^predicate ' "$work/out" | tail -1)
  grep -qx "predicate $1" <<<"$last" || { echo "FAIL: expected 'predicate $1', the editor last said '$last'"; exit 1; }
}

click "row 0 2 GtkEntry"
xdotool type --delay 40 beach
expect 'name CONTAINS\[cd\] "beach" | beach.jpg,beach-clip.mp4'

click "row 1 2 GtkEntry"
xdotool type --delay 40 400
expect 'name CONTAINS\[cd\] "beach" AND iso >= 400\.0 | beach-clip.mp4'

click "compound"
sleep 0.5
xdotool key --delay 150 Down Return
expect 'name CONTAINS\[cd\] "beach" OR iso >= 400\.0 | beach.jpg,beach-clip.mp4,forest.jpg'

click "row 2 2 GtkDropDown"
sleep 0.5
xdotool key --delay 150 Down Return
expect 'name CONTAINS\[cd\] "beach" OR iso >= 400\.0 OR kind == "video" | beach.jpg,beach-clip.mp4,forest.jpg'

click "check 0"
expect 'iso >= 400\.0 OR kind == "video" | beach-clip.mp4,forest.jpg'
click "check 1"
expect 'kind == "video" | beach-clip.mp4'
click "check 2"
expect 'none'
# A row turned on again by its check button comes back with what it held.
click "check 0"
expect 'name CONTAINS\[cd\] "beach" | beach.jpg,beach-clip.mp4'
echo "PASS: $(grep -c '^predicate ' "$work/out") changes reported, each letting through the expected files"
