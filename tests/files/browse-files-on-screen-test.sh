#!/usr/bin/env bash
# The file actions of `vesperon browse` in a real GTK 4 window under Xvfb, driven by xdotool:
# the folder opened last comes back when no folder is named; a right click on a photo shows the
# "Open With" menu of the desktop's applications (one of the test's own, which leaves a mark when
# started) and "Move to Trash"; the Delete key moves the selected photo to the trash; Ctrl+O opens
# another folder through the file chooser, and that one comes back on the next start.
# Usage: browse-files-on-screen-test.sh VESPERON SAMPLES-DIR. Exit 77 (skipped) only when no X
# server can be started.
set -euo pipefail
vesperon=$1
samples=$2
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1400x1024 "$0" "$@"
export GTK_USE_PORTAL=0 GSETTINGS_BACKEND=memory
fail() {
  /usr/bin/import -window root "$work/failure.png" 2>/dev/null && cp "$work/failure.png" /tmp/browse-files-failure.png
  echo "FAIL: $*"; echo "--- out"; cat "$work/out"; echo "--- err"; tail -20 "$work/err"; exit 1
}

# An application of the test's own for PNG files, installed as a package would install it.
mkdir -p "$work/data/applications" "$work/config" "$work/first" "$work/second" "$work/system"
# The system's MIME database, settings schemas and icons, but none of the system's applications.
for shared in mime glib-2.0 icons; do ln -s "/usr/share/$shared" "$work/system/$shared"; done
export XDG_DATA_DIRS="$work/system"
cat >"$work/data/applications/vesperon-test-viewer.desktop" <<DESKTOP
[Desktop Entry]
Type=Application
Name=Test Viewer
Exec=touch $work/opened-with-test-viewer
MimeType=image/png;
DESKTOP
update-desktop-database "$work/data/applications"
printf '[Default Applications]\nimage/png=vesperon-test-viewer.desktop\n' >"$work/config/mimeapps.list"
cp "$samples/badge.png" "$samples/diagram.png" "$work/first/"
cp "$samples/scan.png" "$work/second/"

start() {
  : >"$work/out"
  "$vesperon" browse "$@" --report >"$work/out" 2>"$work/err" &
  pid=$!
}
# The line seen at least N times: a selection made again after a reload is a new line.
wait_for_count() {
  for _ in $(seq 200); do
    [ "$(grep -c "$1" "$work/out")" -ge "$2" ] && return 0
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.05
  done
  fail "the program never reported '$1' $2 times"
}
stop() { kill "$pid"; wait "$pid" 2>/dev/null || true; pid=""; }

# Named once, remembered; not named, it comes back.
start "$work/first"
wait_for '^cell 1 '
stop
start
wait_for "^folder $work/first 2 photos$"
wait_for '^cell 1 '
read -r _ ox oy < <(grep '^ready ' "$work/out")
read -r _ _ x0 y0 _ < <(grep '^cell 0 ' "$work/out")
window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)

# Right click on the first photo: its menu names the test's application.
xdotool mousemove --window "$window" $((ox + x0)) $((oy + y0)) click 3
wait_for '^selection 1 0$'
wait_for '^menu Open With | Test Viewer | Move to Trash$'
sleep 0.5
# Open With: the menu's first item opens its submenu, whose first item is the test's viewer.
# (Right opens the submenu, whose "back" row has the focus; Down goes to the viewer.)
sleep 0.4
xdotool key Right sleep 0.5 key Down sleep 0.2 key Return
wait_for '^opened 1 with vesperon-test-viewer.desktop$'
for _ in $(seq 100); do [ -e "$work/opened-with-test-viewer" ] && break; sleep 0.05; done
[ -e "$work/opened-with-test-viewer" ] || fail "the test's viewer never started"

# Move to Trash from the menu, then the Delete key on the next photo.
xdotool mousemove --window "$window" $((ox + x0)) $((oy + y0)) click 3
wait_for '^menu Open With | Test Viewer | Move to Trash$'
sleep 0.4
xdotool key Down Return
wait_for "^trashed $work/first/badge.png$"
wait_for '^folder-changed 1 photos$'  # the folder's monitor sees it go
[ -f "$work/data/Trash/files/badge.png" ] && [ ! -e "$work/first/badge.png" ] || fail "badge.png is not in the trash"
cmp -s "$work/data/Trash/files/badge.png" "$samples/badge.png" || fail "the trash holds another badge.png"
xdotool mousemove --window "$window" $((ox + x0)) $((oy + y0)) click 1
wait_for_count '^selection 1 0$' 2
xdotool key Delete
wait_for "^trashed $work/first/diagram.png$"
wait_for '^folder-changed 0 photos$'

# Ctrl+O: the file chooser; the folder typed there opens, and is the one remembered.
xdotool key ctrl+o
chooser=""
for _ in $(seq 100); do
  chooser=$(xdotool search --onlyvisible --name "^Open Folder" 2>/dev/null | head -1 || true)
  [ -n "$chooser" ] && break
  sleep 0.05
done
[ -n "$chooser" ] || fail "no file chooser came"
sleep 0.5
xdotool key --window "$chooser" ctrl+l sleep 0.3 type --delay 5 "$work/second/"
sleep 0.5
xdotool key Return
sleep 0.5
wait_for "^opened $work/second$"
wait_for "^folder $work/second 1 photos$"
stop
start
wait_for "^folder $work/second 1 photos$"
stop
echo "PASS: the last folder came back; opened with the test's viewer; two photos trashed (menu, Delete); a folder opened through the chooser came back on the next start"
