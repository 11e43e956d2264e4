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

# Resident memory on screen, after the first screen and a settling second, under a window manager
# (openbox) as on a desktop. Each program's grid gets the focus from a click on it, and the Page
# Downs go through XTEST as typed keys (programs may ignore keys sent to a window); a screenshot
# after the first screen and after the Page Downs shows each really scrolled.
command -v xvfb-run >/dev/null || { echo "memory: skipped, xvfb-run is not installed"; exit 0; }
shots="$build/bench-browse-launch"
mkdir -p "$shots"
export GSK_RENDERER=cairo GDK_BACKEND=x11 NO_AT_BRIDGE=1 GTK_A11Y=none
# Runs a program on the photos and prints its resident memory (MB) after the first screen and
# after 300 Page Downs. $1: ours or peer.
cat >"$work/memory.sh" <<'INNER'
#!/usr/bin/env bash
who=$1 work=$2 vesperon=$3 shots=$4
rss() { awk '/^VmRSS/ { printf "%.0f", $2 / 1024 }' "/proc/$1/status"; }
if command -v openbox >/dev/null; then
  openbox --sm-disable >/dev/null 2>&1 &
  wm=$!
  for _ in $(seq 100); do xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break; sleep 0.05; done
fi
if [ "$who" = ours ]; then
  start=$(date +%s.%N)
  "$vesperon" browse "$work/photos" --size 1024x720 --report >"$work/out" 2>/dev/null &
  pid=$!
  for _ in $(seq 400); do grep -q '^ready ' "$work/out" && break; sleep 0.05; done
  w=$(xdotool search --onlyvisible --name "^Vesperon" | head -1)
else
  mkdir -p "$XDG_CONFIG_HOME/gthumb"
  gthumb "$work/photos" >/dev/null 2>&1 &
  pid=$!
  for _ in $(seq 200); do xdotool search --onlyvisible --class gthumb >/dev/null 2>&1 && break; sleep 0.05; done
  w=$(xdotool search --onlyvisible --class gthumb | head -1)
  xdotool windowsize "$w" 1024 720 2>/dev/null || true
fi
# The first screen's thumbnails, made on the programs' own threads; of ours, also when the last
# capture day was read (the groups are final from then on), said on stderr.
for _ in $(seq 120); do
  if [ "$who" = ours ] && [ -z "${daysRead:-}" ] && grep -q '^days read$' "$work/out"; then
    daysRead=$(awk -v a="$start" -v b="$(date +%s.%N)" 'BEGIN { printf "%.2f", b - a }')
    echo "every capture day read (groups final) $daysRead s after launch, on screen" >&2
  fi
  sleep 0.05
done
first=$(rss "$pid")
import -window root "$shots/$who-first.png" 2>/dev/null
xdotool windowactivate --sync "$w" 2>/dev/null || xdotool windowfocus --sync "$w" 2>/dev/null
eval "$(xdotool getwindowgeometry --shell "$w")"
# A click on the grid gives it the keys: on a card of ours (a single click only selects), on the
# gap above gThumb's first row (a click on one of its thumbnails opens the photo).
if [ "$who" = ours ]; then xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1
else xdotool mousemove $((X + WIDTH * 6 / 10)) $((Y + 100)) click 1; fi
sleep 0.5
for _ in $(seq 300); do xdotool key Page_Down; sleep 0.02; done
sleep 3
after=$(rss "$pid")
import -window root "$shots/$who-after.png" 2>/dev/null
kill "$pid"
[ -n "${wm:-}" ] && kill "$wm"
echo "$first $after"
INNER
chmod +x "$work/memory.sh"
read -r ours oursAfter < <(xvfb-run -a -s "-screen 0 1280x900x24" "$work/memory.sh" ours "$work" "$vesperon" "$shots" 2>&1 | tee >(grep '^every' >&2) | tail -1)
echo "resident memory after the first screen: vesperon browse $ours MB; after 300 Page Downs $oursAfter MB"
if ! command -v gthumb >/dev/null; then
  echo "peer: gThumb is not installed (apt-get install gthumb); its figure is skipped"
  exit 0
fi
read -r peer peerAfter < <(XDG_CONFIG_HOME="$work/peer-config" XDG_CACHE_HOME="$work/peer-cache" \
  xvfb-run -a -s "-screen 0 1280x900x24" "$work/memory.sh" peer "$work" "$vesperon" "$shots" | tail -1)
echo "resident memory after the first screen: gThumb $peer MB; after 300 Page Downs $peerAfter MB"
echo "vesperon browse takes $(ratio "$ours" "$peer")x gThumb's memory after the first screen, $(ratio "$oursAfter" "$peerAfter")x after the Page Downs (goal <= 1)"
echo "screenshots (each program after its first screen and after the Page Downs): $shots/{ours,peer}-{first,after}.png"
