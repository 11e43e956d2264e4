#!/usr/bin/env bash
# The filter bar of `vesperon browse` in a real GTK 4 window under Xvfb, driven by xdotool: Ctrl+F
# shows it with the focus in the name field; typing there turns the row on and narrows the grid;
# an emptied field stops narrowing; the camera model and file size rows (reached with Tab) narrow
# further. After each change the grid must hold exactly the files `vesperon find` gives for the
# predicate the program reports. (Typing reaches the name field only when the bar shows.)
# Usage: browse-filter-on-screen-test.sh VESPERON SAMPLES-DIR. Exit 77 (skipped) only when no X
# server can be started.
set -euo pipefail
vesperon=$1
samples=$2
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1400x1024 "$0" "$@"

"$vesperon" browse "$samples" --report >"$work/out" 2>"$work/err" &
pid=$!
# The grid after the last change holds what `vesperon find` finds for the reported predicate.
agrees() {
  local line count predicate found
  line=$(grep '^filter ' "$work/out" | tail -1)
  count=$(sed -E 's/^filter ([0-9]+) photos: .*/\1/' <<<"$line")
  predicate=$(sed -E 's/^filter [0-9]+ photos: //' <<<"$line")
  found=$("$vesperon" find "$samples" --where "$predicate" | wc -l)
  [ "$count" -eq "$found" ] || { echo "FAIL: the grid shows $count photos for '$predicate', find gives $found"; exit 1; }
  echo "$count"
}
wait_for '^cell 5 '
total=$(grep '^folder ' "$work/out" | sed -E 's/.* ([0-9]+) photos$/\1/')
window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)

xdotool key ctrl+f
wait_for '^filter-bar compound ' 
xdotool type --delay 40 beach
wait_for '^filter [0-9]* photos: name CONTAINS\[cd\] "beach"$'
beach=$(agrees)
[ "$beach" -ge 1 ] && [ "$beach" -lt "$total" ] || { echo "FAIL: 'beach' left $beach of $total photos"; exit 1; }

# An emptied field does not narrow.
xdotool key ctrl+a BackSpace
wait_for '^filter [0-9]* photos: TRUEPREDICATE$'
[ "$(agrees)" -eq "$total" ] || { echo "FAIL: an empty name still narrows"; exit 1; }

# Tab to the camera model's field (past its check button and operator), then to the size's
# (past the capture date's check button, operator, number and unit, and the size's check button
# and operator).
xdotool key --delay 40 Tab Tab Tab
xdotool type --delay 40 sam
wait_for '{TIFF}.Model CONTAINS\[cd\] "sam"$'
model=$(agrees)
xdotool key --delay 40 Tab Tab Tab Tab Tab Tab Tab
xdotool type --delay 40 100
wait_for 'size > 100000.0$'
both=$(agrees)
[ "$both" -le "$model" ] || { echo "FAIL: a second row widened the grid ($model, then $both)"; exit 1; }

# Back to the capture date's operator (past the size's operator and check button, and the date's
# unit and number), and "before" (two down from "within last"): today's midnight, by default.
xdotool key --delay 40 shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab
xdotool key space
sleep 1
xdotool key --delay 150 Down Down Return
wait_for '{Exif}.DateTimeOriginal <= "[0-9-]*T00:00:00[-+][0-9:]*" AND size > 100000.0$'
dated=$(agrees)
[ "$dated" -le "$both" ] || { echo "FAIL: a third row widened the grid ($both, then $dated)"; exit 1; }
# "Any of the following are true", chosen in the first line's pop-up with the mouse: at least as
# many photos as the model row alone lets through.
read -r _ _ cx cy < <(grep '^filter-bar compound ' "$work/out")
xdotool mousemove --window "$window" "$cx" "$cy" click 1
sleep 1
xdotool key --delay 150 Down Return
wait_for ' OR size > 100000.0$'
any=$(agrees)
[ "$any" -ge "$model" ] || { echo "FAIL: any of the rows showed $any, fewer than the model row's $model"; exit 1; }

echo "PASS: 'beach' showed $beach of $total photos, an empty name all, model 'sam' $model, size > 100 KB $both, captured before today $dated, any of them $any, each as find gives"
