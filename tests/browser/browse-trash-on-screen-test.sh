#!/usr/bin/env bash
# `vesperon browse` on screen under Xvfb and openbox: the right-click menu shows whole, with
# every application that opens the photo under "Open With"; Delete moves the selected photo to
# the trash, the selection moves on to the next photo and a notice offers Undo, which puts the
# file back where it was and selects it; a photo copied into the folder appears, and a folder that
# vanishes is said to be gone in a window that stays. Screenshots go to /tmp/browse-trash-*.png.
# Usage: browse-trash-on-screen-test.sh VESPERON SAMPLES-DIR. Exit 77 (skipped) only when no X
# server can be started.
set -euo pipefail
vesperon=$1
samples=$2
source "$(dirname "$0")/../support/screen-test.sh"
screen_test_start 1280x900 "$0" "$@"
screen_test_window_manager

mkdir -p "$work/photos"
for f in beach boat cliffs dunes fern lake; do cp "$samples/$f.jpg" "$work/photos/"; done
fail() { import -window root /tmp/browse-trash-failure.png 2>/dev/null || true; echo "FAIL: $*"; cat "$work/out" "$work/err"; exit 1; }

"$vesperon" browse "$work/photos" --sort name --size 1000x700 --report >"$work/out" 2>"$work/err" &
pid=$!
wait_for '^cell 2 '
window=$(xdotool search --sync --onlyvisible --name "^Vesperon" | head -1)
read -r _ ox oy < <(grep '^ready ' "$work/out")
read -r _ _ x1 y1 name1 < <(grep '^cell 1 ' "$work/out")
read -r _ _ _ _ name2 < <(grep '^cell 2 ' "$work/out")

# The menu: its items all show, Move to Trash below the Open With submenu.
xdotool mousemove --window "$window" $((ox + x1)) $((oy + y1)) click 3
wait_for '^menu Open With'
# Every application the desktop registers for JPEG, none left out.
menu=$(grep '^menu Open With' "$work/out" | tail -1)
registered=$(gio mime image/jpeg 2>/dev/null | sed -n '/^Registered applications:/,/^[A-Z]/p' | grep -c '\.desktop$' || true)
listed=$(sed -e 's/^menu Open With//' -e 's/ | Move to Trash$//' <<<"$menu" | tr '|' '\n' | grep -v '^ *-* *$' | grep -vc '^ *$' || true)
[ "$listed" -ge "$registered" ] || fail "Open With lists $listed applications of the $registered registered: $menu"
echo "open with: $menu ($registered registered)"
sleep 0.8
import -window root "$work/menu.png"
xdotool key Escape
sleep 0.3

xdotool mousemove --window "$window" $((ox + x1)) $((oy + y1)) click 1
wait_for '^selection 1 1$'
xdotool key Delete
wait_for "^trashed .*/$name1\$"
wait_for '^notice-action '
[ ! -e "$work/photos/$name1" ] || fail "$name1 is still in the folder"
ls "$XDG_DATA_HOME/Trash/files/" | grep -q "^$name1" || fail "$name1 is not in the trash"
# The photo after it takes its place and the selection.
for _ in $(seq 100); do [ "$(grep '^selection' "$work/out" | tail -1)" = "selection 1 1" ] && break; sleep 0.05; done
grep -q "^notice “$name1” moved to the trash\$" "$work/out" || fail "no notice"
sleep 0.5
import -window root "$work/trashed.png"
read -r _ nx ny < <(grep '^notice-action ' "$work/out" | tail -1)
xdotool mousemove --window "$window" $((ox + nx)) $((oy + ny)) click 1
wait_for '^restored 1$'
[ -e "$work/photos/$name1" ] || fail "$name1 is not back in the folder"
[ -z "$(ls "$XDG_DATA_HOME/Trash/info/")" ] || fail "the trash still notes $(ls "$XDG_DATA_HOME/Trash/info/")"
sleep 0.5
import -window root "$work/restored.png"

# The folder is watched: a photo copied in shows within a second, and a folder that vanishes
# says so and keeps the window.
cp "$samples/glacier.jpg" "$work/photos/aaa-new.jpg"
wait_for '^folder-changed 7 photos$'
sleep 0.5
import -window root "$work/added.png"
rm -rf "$work/photos"
wait_for '^folder-gone '
sleep 0.5
import -window root "$work/gone.png"
kill -0 "$pid" || fail "the window went with the folder"
kill "$pid"; wait "$pid" 2>/dev/null || true
for f in "$work"/*.png; do cp "$f" "/tmp/browse-trash-$(basename "$f")"; done
echo "PASS ($name1 trashed and restored; $name2 followed it)"
