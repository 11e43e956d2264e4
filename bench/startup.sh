#!/usr/bin/env bash
# Start-up: `vesperon thumbs --cache` over one JPEG already in the persistent image cache, against
# `vesperon --help` (which starts the program and reads no file), whole-process wall time over
# repeated runs (hyperfine) and peak resident memory (GNU time). The thumbs run registers every
# plug-in but should open only what its one file needs. Goal: at most 1.5x the time of --help.
#
#   bash bench/startup.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
bin="$(cd "$build" && pwd)/bin/vesperon"
work="$(cd "$build" && pwd)/bench-startup"
rm -rf "$work"
mkdir -p "$work/photo"
cp "$(dirname "$0")/../samples/beach.jpg" "$work/photo/"
thumbs=("$bin" thumbs "$work/photo" --cache --cache-dir "$work/cache" --out "$work/out")
"${thumbs[@]}" >/dev/null 2>&1  # fills the cache

source "$(dirname "$0")/timing.sh"
hyperfine -N --warmup 5 --runs 40 --export-json "$work/times.json" \
  "$bin --help" "${thumbs[*]}" >/dev/null 2>&1
mean() { python3 -c "import json,sys; print(json.load(open('$work/times.json'))['results'][$1]['mean'] * 1000)"; }
help_ms=$(mean 0)
thumbs_ms=$(mean 1)
peak() { /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -1; }
help_kb=$(peak "$bin" --help)
thumbs_kb=$(peak "${thumbs[@]}")
printf 'start-up (mean of 40 runs, peak resident memory):\n'
printf '  vesperon --help                       %6.1f ms  %6d KB\n' "$help_ms" "$help_kb"
printf '  vesperon thumbs --cache, 1 cached JPEG %6.1f ms  %6d KB   = %sx --help in time (goal: at most 1.5x)\n' \
  "$thumbs_ms" "$thumbs_kb" "$(ratio "$thumbs_ms" "$help_ms")"
