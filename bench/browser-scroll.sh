#!/usr/bin/env bash
# Page-downs through 1,000,000 items on screen under Xvfb: MCBrowserView in the GTK host against
# GTK 4's GtkGridView in the same window size. Goal: less main-thread time per page than GtkGridView.
set -euo pipefail
build=${1:-build}
bench="$build/bin/browser-scroll-bench"
[ -x "$bench" ] || { echo "browser-scroll: $bench is not built"; exit 1; }
export GSK_RENDERER=cairo GDK_BACKEND=x11 NO_AT_BRIDGE=1 GTK_A11Y=none
ours=$(xvfb-run -a -s "-screen 0 1400x900x24" "$bench" ours 2>/dev/null | tail -1)
grid=$(xvfb-run -a -s "-screen 0 1400x900x24" "$bench" gridview 2>/dev/null | tail -1)
echo "$ours"
echo "$grid"
a=$(grep -o '[0-9.]* ms' <<<"$ours" | cut -d' ' -f1)
b=$(grep -o '[0-9.]* ms' <<<"$grid" | cut -d' ' -f1)
awk -v a="$a" -v b="$b" 'BEGIN { printf "MCBrowserView takes %.2fx the time of GtkGridView per page (goal < 1)\n", a / b }'
