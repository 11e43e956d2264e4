#!/usr/bin/env bash
# Runs a built folder-browser on a folder under a virtual X server of its own and checks that it
# showed the folder: it must report that every thumbnail of its first screen arrived, and the
# screenshot taken then must hold photographs (thousands of colours), not empty placeholders.
# usage: show-folder-on-screen.sh PROGRAM FOLDER   (exit 77 where no X server can start)
set -euo pipefail
. "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1024x768 "$0" "$@"
program=$1
folder=$2

"$program" "$folder" --quit-when-shown >"$work/out" 2>"$work/err" &
pid=$!
wait_for '^shown with [1-9][0-9]* thumbnails$'
/usr/bin/import -window root "$work/screen.png"
colours=$(/usr/bin/convert "$work/screen.png" -format %k info:)
wait "$pid" || { echo "FAIL: the program exited with $?"; cat "$work/err"; exit 1; }
pid=""
cat "$work/out"
echo "screen colours: $colours"
[ "$colours" -gt 2000 ] || { echo "FAIL: the window shows no photographs"; exit 1; }
[ -z "${VESPERON_KEEP_SCREENSHOT:-}" ] || cp "$work/screen.png" "$VESPERON_KEEP_SCREENSHOT"
