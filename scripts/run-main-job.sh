#!/usr/bin/env bash
# The main job of `make run`: the vesperon program on the bundled samples.
set -euo pipefail
build=${1:-build}
bin="$build/bin/vesperon"
"$bin" plugins
