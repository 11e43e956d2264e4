#!/usr/bin/env bash
# Runs every benchmark program built from bench/, then every bench/*.sh comparison script.
set -uo pipefail
build=${1:-build}
status=0
for b in "$build"/bin/bench_*; do
  [ -x "$b" ] || continue
  echo "== $(basename "$b")"
  "$b" || status=1
done
for s in bench/*.sh; do
  [ -f "$s" ] || continue
  echo "== $s"
  bash "$s" "$build" || status=1
done
exit $status
