#!/usr/bin/env bash
# `vesperon browse` on 2,000 photos: launch to a full first screen (offscreen --render, which
# returns once the first screen's thumbnails are in) the first time, with an empty thumbnail
# cache, and the second time, from the desktop's shared cache the first run filled. Goal: the
# second launch at most 0.3 s and at most half the first.
# Then resident memory on screen under Xvfb after the first screen, against gThumb (the peer, a
# desktop photo browser from the Debian archive) on the same folder in the same window size;
# when gThumb is not installed its figure is skipped, and said so. Goal: at or below gThumb's.
# Memory is taken again after 300 Page Downs (goal: flat, the memory cache holds a bounded number
# of thumbnails). Usage: bench/browse-launch.sh [BUILD-DIR] [PHOTOS]
set -euo pipefail
build=${1:-build}
count=${2:-2000}
here=$(cd "$(dirname "$0")" && pwd)
source "$here/timing.sh"
vesperon="$build/bin/vesperon"
[ -x "$vesperon" ] || { echo "browse-launch: $vesperon is not built"; exit 1; }
work=$(mktemp -d "${TMPDIR:-/tmp}/vesperon-browse-launch-XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/photos"
# Copies of the samples' photos, each its own file with its own entry in the cache.
mapfile -t sources < <(ls "$here/../samples"/*.jpg | grep -v corrupt)
for ((i = 0; i < count; i++)); do
  cp "${sources[$((i % ${#sources[@]}))]}" "$work/photos/$(printf 'p%05d' "$i")-$(basename "${sources[$((i % ${#sources[@]}))]}")"
done
export XDG_CACHE_HOME="$work/cache" XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
# Prints two times: to the first screen drawn (the line --render prints once the PNG is written),
# and to the process's end, once the new entries of the shared cache are written too.
launch() {
  local start shown
  start=$(now)
  {
    read -r _ || true
    shown=$(elapsed "$start")
    cat >/dev/null
  } < <("$vesperon" browse "$work/photos" --size 1024x720 --render "$work/first-screen.png")
  echo "$shown $(elapsed "$start")"
}
read -r first firstDone < <(launch)
read -r second secondDone < <(launch)
echo "first launch:  $first s to a full first screen of $count photos (empty thumbnail cache; $firstDone s with its entries written; goal with 20,000 photos: <= 1.5 s)"
echo "second launch: $second s (from the shared thumbnail cache; $secondDone s to exit), $(ratio "$second" "$first")x the first (goals: <= 0.3 s, <= 0.5x)"

# Resident memory on screen, after the first screen and a settling second.
command -v xvfb-run >/dev/null || { echo "memory: skipped, xvfb-run is not installed"; exit 0; }
export GSK_RENDERER=cairo GDK_BACKEND=x11 NO_AT_BRIDGE=1 GTK_A11Y=none
rss_of() { awk '/^VmRSS/ { printf "%.0f", $2 / 1024 }' "/proc/$1/status"; }
cat >"$work/ours.sh" <<INNER
#!/usr/bin/env bash
"$vesperon" browse "$work/photos" --size 1024x720 --report >"$work/out" 2>/dev/null &
pid=\$!
for _ in \$(seq 400); do grep -q '^cell 5 ' "$work/out" && break; sleep 0.05; done
sleep 3
awk '/^VmRSS/ { printf "%.0f ", \$2 / 1024 }' /proc/\$pid/status
w=\$(xdotool search --onlyvisible --name "^Vesperon" | head -1)
xdotool windowfocus --sync "\$w" 2>/dev/null || true
for _ in \$(seq 300); do xdotool key --window "\$w" Page_Down 2>/dev/null; sleep 0.02; done
sleep 3
awk '/^VmRSS/ { printf "%.0f\n", \$2 / 1024 }' /proc/\$pid/status
kill \$pid
INNER
chmod +x "$work/ours.sh"
read -r ours oursAfter < <(xvfb-run -a -s "-screen 0 1280x900x24" "$work/ours.sh" | tail -1)
echo "resident memory after the first screen: vesperon browse $ours MB; after 300 Page Downs $oursAfter MB"
if ! command -v gthumb >/dev/null; then
  echo "peer: gThumb is not installed (apt-get install gthumb); its figure is skipped"
  exit 0
fi
cat >"$work/peer.sh" <<INNER
#!/usr/bin/env bash
mkdir -p "$work/peer-config/gthumb"
gthumb "$work/photos" >/dev/null 2>&1 &
pid=\$!
for _ in \$(seq 200); do xdotool search --onlyvisible --class gthumb >/dev/null 2>&1 && break; sleep 0.05; done
w=\$(xdotool search --onlyvisible --class gthumb | head -1)
xdotool windowsize "\$w" 1024 720 2>/dev/null || true
sleep 6  # its thumbnails of the first screen, made on its own threads
awk '/^VmRSS/ { printf "%.0f ", \$2 / 1024 }' /proc/\$pid/status
for _ in \$(seq 300); do xdotool key --window "\$w" Page_Down 2>/dev/null; sleep 0.02; done
sleep 3
awk '/^VmRSS/ { printf "%.0f\n", \$2 / 1024 }' /proc/\$pid/status
kill \$pid
INNER
chmod +x "$work/peer.sh"
read -r peer peerAfter < <(XDG_CONFIG_HOME="$work/peer-config" XDG_CACHE_HOME="$work/peer-cache" xvfb-run -a -s "-screen 0 1280x900x24" "$work/peer.sh" | tail -1)
echo "resident memory after the first screen: gThumb $peer MB; after 300 Page Downs $peerAfter MB"
echo "vesperon browse takes $(ratio "$ours" "$peer")x gThumb's memory after the first screen, $(ratio "$oursAfter" "$peerAfter")x after the Page Downs (goal <= 1)"
