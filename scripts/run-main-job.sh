#!/usr/bin/env bash
# The main job of `make run`: the vesperon program on the bundled samples.
set -euo pipefail
build=${1:-build}
bin="$build/bin/vesperon"
"$bin" plugins
echo
# Thumbnails of the bundled sample photos, through the thumbnail cache, into the build folder.
"$bin" thumbs samples --size 256 --out "$build/thumbnails"
