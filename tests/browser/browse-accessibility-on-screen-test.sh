#!/usr/bin/env bash
# `vesperon browse samples` under Xvfb with a real accessibility bus: moves the selection with
# xdotool and reads back over AT-SPI (pyatspi) what a screen reader gets from the browser view: a
# table named "Photos" whose description names the focused file, its place among all the items and
# how many are selected; then, once a screen reader would have said it listens, the photos shown as
# cells, the status bar's line and slider, and in the viewer the toolbar's buttons and the colour
# label's choices, which the toolkit draws itself.
# Usage: browse-accessibility-on-screen-test.sh VESPERON SAMPLES-DIR. Exit 77 (skipped) when no X
# server or no accessibility bus can be started, or pyatspi is missing.
set -euo pipefail
vesperon=$1
samples=$2
here=$(dirname "$0")
source "$here/../support/screen-test.sh"
screen_test_start 1400x1024 "$0" "$@"

launcher=/usr/libexec/at-spi-bus-launcher
if [ ! -x "$launcher" ] || ! /usr/bin/python3 -c 'import pyatspi' 2>/dev/null; then
  echo "SKIPPED: at-spi2-core or python3-pyatspi is not installed"; exit 77
fi
# The accessibility bus of this test's own session; the registry starts on it when first asked.
"$launcher" --launch-immediately >/dev/null 2>&1 &
dpid=$!
for _ in $(seq 50); do
  gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus --method org.a11y.Bus.GetAddress \
    >/dev/null 2>&1 && break
  sleep 0.1
done
gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus --method org.a11y.Bus.GetAddress \
  >/dev/null 2>&1 || { echo "SKIPPED: the accessibility bus did not start"; exit 77; }
unset NO_AT_BRIDGE
export GTK_A11Y=atspi

# A small folder of its own, so that the count is known.
mkdir "$work/photos"
cp "$samples"/alley.jpg "$samples"/beach.jpg "$samples"/boat.jpg "$samples"/diagram.png "$work/photos"
total=4
"$vesperon" browse "$work/photos" --report >"$work/out" 2>"$work/err" &
pid=$!
wait_for '^cell 3 '
read -r _ ox oy < <(grep '^ready ' "$work/out")
read -r _ _ x0 y0 _ < <(grep '^cell 0 ' "$work/out")
read -r _ _ _ _ name1 < <(grep '^cell 1 ' "$work/out")
window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)

# Reads until the description is what is expected (AT-SPI hears changes a turn later).
expect() {
  local want=$1 got=""
  for _ in $(seq 30); do
    got=$(timeout 5 /usr/bin/python3 "$here/read-accessible.py" vesperon 2>/dev/null || true)
    [ "$got" = "$want" ] && return 0
    sleep 0.2
  done
  echo "FAIL: AT-SPI reads '$got', expected '$want'"; cat "$work/err"; exit 1
}

expect "table|Photos|No selection, $total items"
xdotool mousemove --window "$window" $((ox + x0)) $((oy + y0)) click 1
wait_for '^selection 1 0$'
xdotool key Right
wait_for '^selection 1 1$'
expect "table|Photos|$name1, 2 of $total"
xdotool key shift+Right
wait_for '^selection 2 1,2$'
read -r _ _ _ _ name2 < <(grep '^cell 2 ' "$work/out")
expect "table|Photos|$name2, 3 of $total, 2 selected"

# Every accessible under the table, until one line matches `pattern` (a grep -E expression).
expect_all() {
  local pattern=$1
  for _ in $(seq 30); do
    timeout 5 /usr/bin/python3 "$here/read-accessible.py" vesperon --all >"$work/all" 2>/dev/null || true
    grep -Eq "$pattern" "$work/all" && return 0
    sleep 0.2
  done
  echo "FAIL: no accessible matches '$pattern'; AT-SPI reads:"; cat "$work/all"; cat "$work/err"; exit 1
}
# Nobody has said yet that assistive technologies listen: the window makes no objects for what
# its views draw. A screen reader says so as it starts (org.a11y.Status.IsEnabled); then they come.
timeout 5 /usr/bin/python3 "$here/read-accessible.py" vesperon --all >"$work/all" 2>/dev/null || true
if [ -s "$work/all" ]; then echo "FAIL: objects made with nobody listening:"; cat "$work/all"; exit 1; fi
gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus --method org.freedesktop.DBus.Properties.Set \
  org.a11y.Status IsEnabled "<true>" >/dev/null
expect_all "^label\|$total photos in [0-9]+ days?, 2 photos selected \("
# GTK 4.8 gives no value interface to a widget of its own; the slider says its value in words.
expect_all "^slider\|Thumbnail size\|[0-9]+%\|sensitive$"
# Each photo shown is a cell of the table, with its place and whether it is selected.
expect_all "^table cell\|$name2\|3 of $total\|.*selected"
expect_all "^table cell\|$name1\|2 of $total\|.*selected"
read -r _ _ _ _ name0 < <(grep '^cell 0 ' "$work/out")
expect_all "^table cell\|$name0\|1 of $total\|sensitive$"
# The viewer, on the focused photo: its toolbar's buttons and the colour label's choices.
xdotool key Return
wait_for '^viewer '
expect_all "^push button\|Info\|\|sensitive$"
expect_all "^push button\|Next\|"
expect_all "^check box\|Red\|\|sensitive$"
expect_all "^panel\|Color label\|"
xdotool key i
expect_all "^push button\|Info\|\|pressed,sensitive$"
echo "PASS"
