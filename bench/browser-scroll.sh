#!/usr/bin/env bash
# Page-downs through 1,000,000 items on screen under Xvfb: MCBrowserView in the GTK host against
# GTK 4's GtkGridView in the same window size, with the same cell size, thumbnails and captions,
# on each of GTK's renderers: Cairo, and GL on Mesa's software driver. Per page: main-thread CPU
# time and the whole process's CPU time (the GL driver rasterises on threads of its own); then the
# process's peak and present resident memory. Goal: at most 0.66x GtkGridView's time by both
# measures on both renderers.
set -euo pipefail
build=${1:-build}
pages=${2:-200}
bench="$build/bin/browser-scroll-bench"
[ -x "$bench" ] || { echo "browser-scroll: $bench is not built"; exit 1; }
export GDK_BACKEND=x11 NO_AT_BRIDGE=1 GTK_A11Y=none
field() { grep -o "[0-9.]* ms $1" <<<"$2" | cut -d' ' -f1; }
for renderer in cairo gl; do
  ours=$(GSK_RENDERER=$renderer LIBGL_ALWAYS_SOFTWARE=1 xvfb-run -a -s "-screen 0 1400x900x24" "$bench" ours "$pages" 2>/dev/null | tail -1)
  grid=$(GSK_RENDERER=$renderer LIBGL_ALWAYS_SOFTWARE=1 xvfb-run -a -s "-screen 0 1400x900x24" "$bench" gridview "$pages" 2>/dev/null | tail -1)
  echo "[$renderer] $ours"
  echo "[$renderer] $grid"
  awk -v r="$renderer" -v a="$(field main-thread "$ours")" -v b="$(field main-thread "$grid")" \
      -v c="$(field process "$ours")" -v d="$(field process "$grid")" 'BEGIN {
    printf "[%s] MCBrowserView takes %.2fx GtkGridView'"'"'s main-thread time and %.2fx its process time per page (goal <= 0.66)\n", r, a / b, c / d }'
done
