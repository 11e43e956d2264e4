#!/usr/bin/env bash
# The toolkit demo in a real GTK 4 window under Xvfb, driven by real pointer and key input from
# xdotool: what the demo reports, and a screenshot of the window.
# Usage: gtk-demo-test.sh DEMO-PROGRAM. Exit 77 (skipped) only when no X server can be started.
set -euo pipefail
demo=$1
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1024x768 "$0" "$@"
"$demo" --report --undecorated >"$work/out" 2>"$work/err" &
pid=$!


wait_for '^ready '
read -r _ ox oy _ _ < <(grep '^ready ' "$work/out")
window=$(xdotool search --sync --onlyvisible --name "Vesperon toolkit demo" | head -1)

# A click, a drag, keys through the key bindings (Shift+Down moves five times as far).
xdotool mousemove --window "$window" $((ox + 150)) $((oy + 130)) click 1
wait_for '^click 150 130$'
xdotool mousemove --window "$window" $((ox + 200)) $((oy + 200)) mousedown 1 \
  mousemove --window "$window" $((ox + 230)) $((oy + 220)) sleep 0.1 \
  mousemove --window "$window" $((ox + 260)) $((oy + 240)) mouseup 1
wait_for '^drag-end 260 240$'
xdotool key Right Right shift+Down
wait_for '^command moveDownAndModifySelection: 280 290$'

# The marker shows at its place on screen, in its colour, and the status line below it.
sleep 0.3
eval "$(xdotool getwindowgeometry --shell "$window")"
pixel() { import -window root -crop "1x1+$1+$2" -depth 8 txt:- | tail -1 | grep -o '#[0-9A-F]\{6\}'; }
at_marker=$(pixel $((X + ox + 280)) $((Y + oy + 290)))
beside=$(pixel $((X + ox + 330)) $((Y + oy + 290)))
import -window root "$work/screen.png"
if [ "$at_marker" != "#E01B24" ]; then
  echo "FAIL: the marker's pixel is $at_marker, not #E01B24"; cp "$work/screen.png" /tmp/toolkit-demo-failure.png; exit 1
fi
if [ "$beside" = "#E01B24" ]; then
  echo "FAIL: the marker colour is beside the marker too"; exit 1
fi

# A right click opens a menu whose row of colour labels the host shows in its popover. The green
# dot is on screen; a click on it paints the marker green and closes the menu, dot and all.
xdotool mousemove --window "$window" $((ox + 420)) $((oy + 120)) click 3
wait_for '^menu '
sleep 0.5
import -window root "$work/menu.png"
dot=$(convert "$work/menu.png" txt:- | grep -m1 '#33D17A' | cut -d: -f1 || true)
if [ -z "$dot" ]; then
  echo "FAIL: the menu shows no green label dot"; cp "$work/menu.png" /tmp/toolkit-demo-failure.png; exit 1
fi
dot_x=${dot%,*}
dot_y=$((${dot#*,} + 6))  # the first green pixel is the dot's top; aim below it
xdotool mousemove "$dot_x" "$dot_y" click 1
wait_for '^label 4$'
wait_for '^menu closed$'
sleep 0.3
painted=$(pixel $((X + ox + 280)) $((Y + oy + 290)))
where_dot_was=$(pixel "$dot_x" "$dot_y")
if [ "$painted" != "#33D17A" ]; then
  echo "FAIL: the marker's pixel is $painted after picking green"; import -window root /tmp/toolkit-demo-failure.png; exit 1
fi
if [ "$where_dot_was" = "#33D17A" ]; then
  echo "FAIL: the menu is still on screen after the pick"; import -window root /tmp/toolkit-demo-failure.png; exit 1
fi

# Escape quits through the command of the same name; the program ends by itself.
xdotool key Escape
wait_for '^quit$'
for _ in $(seq 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.05; done
if kill -0 "$pid" 2>/dev/null; then echo "FAIL: the demo did not end after Escape"; exit 1; fi
wait "$pid" || { echo "FAIL: the demo ended with an error"; cat "$work/err"; exit 1; }
echo "PASS: $(wc -l <"$work/out") reports; marker $at_marker at its place, $painted from the menu's labels"
