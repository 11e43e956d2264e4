#!/usr/bin/env bash
# A GTK host whose window closes while something it opened is under way: a right-click menu, a
# nested tracking loop waiting for a release, a drag in the air. Each time the program must end
# what was open, leave its main loop and exit 0, without a crash or a GTK critical.
# Usage: closing-window-on-screen-test.sh PROGRAM. Exit 77 (skipped) only when no X server can start.
set -euo pipefail
program=$1
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1024x768 "$0" "$@"
screen_test_window_manager

fail() { echo "FAIL: $*"; cat "$work/out" "$work/err"; exit 1; }

for mode in menu loop drag; do
  : >"$work/out"
  "$program" "$mode" >"$work/out" 2>"$work/err" &
  pid=$!
  wait_for '^ready '
  read -r _ x y < <(grep '^ready ' "$work/out")
  window=$(xdotool search --sync --onlyvisible --name '^Closing window$' | head -1)
  case $mode in
    menu) xdotool mousemove --window "$window" "$x" "$y" click 3
          wait_for '^menu shown$' ;;
    loop) xdotool mousemove --window "$window" "$x" "$y" mousedown 1
          wait_for '^loop started$' ;;
    drag) xdotool mousemove --window "$window" "$x" "$y" mousedown 1
          xdotool mousemove_relative 20 20 mousemove_relative 20 20
          wait_for '^drag started$' ;;
  esac
  # The window closes by itself; the program must then end within a few seconds.
  for _ in $(seq 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.05; done
  xdotool mouseup 1 2>/dev/null || true
  for _ in $(seq 60); do kill -0 "$pid" 2>/dev/null || break; sleep 0.05; done
  if kill -0 "$pid" 2>/dev/null; then fail "$mode: the program still runs after its window closed"; fi
  status=0
  wait "$pid" || status=$?
  [ "$status" -eq 0 ] || fail "$mode: exit status $status"
  grep -q '^closed$' "$work/out" || fail "$mode: the window did not close"
  grep -q '^exit$' "$work/out" || fail "$mode: the main loop was not left"
  case $mode in
    loop) grep -q '^loop ended$' "$work/out" || fail "loop: the tracking loop did not end" ;;
    drag) grep -q '^drag ended ' "$work/out" || fail "drag: the drag was not ended" ;;
  esac
  if grep -E 'CRITICAL|Segmentation|AddressSanitizer' "$work/err"; then fail "$mode: errors on stderr"; fi
  echo "$mode: closed cleanly ($(tr '\n' ';' <"$work/out"))"
done
echo "PASS"
