#!/usr/bin/env bash
# Only the GTK host (and examples that are GTK programs themselves) may include GTK or GDK: the
# library, its plug-ins and the vesperon program build against the host's own API, so a program
# can use them with another toolkit, and the host stays the one place that follows GTK's changes.
set -euo pipefail
root=$1
found=$(cd "$root" && grep -rlE '^[[:space:]]*#[[:space:]]*include[[:space:]]*<(gtk|gdk)/' \
          --include='*.h' --include='*.cpp' vesperon plugins tools || true)
found=$(grep -v '^tools/examples/' <<<"$found" || true)
if [ -n "$found" ]; then
  echo "GTK headers included outside hosts/gtk:"
  echo "$found"
  exit 1
fi
echo "PASS: no GTK header outside hosts/gtk"
