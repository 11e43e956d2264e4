# Sourced by the on-screen tests. `screen_test_start SIZE "$0" "$@"` runs the script again under
# a real X server of that size (xvfb-run), or skips it (exit 77) where none can start; in the
# server it makes `$work`, a folder of the test's own that goes at the end together with the
# programs in `$pid` and `$dpid`, and sets the environment: GTK on X11 drawing with Cairo, the
# user's cache, settings and data out of reach, and no leak check in programs built with
# AddressSanitizer (GTK keeps allocations for the life of the process; the unit suites check
# leaks). `wait_for PATTERN` waits up to 15 s for a line of `$work/out` while `$pid` runs, then
# fails with what the program said (through the script's own `fail` when it has one).

screen_test_start() {
  local size=$1 script=$2
  shift 2
  if [ -z "${VESPERON_SCREEN_TEST:-}" ]; then
    if ! command -v xvfb-run >/dev/null || ! command -v xdotool >/dev/null; then
      echo "SKIPPED: xvfb-run or xdotool is not installed, so no X server can be started"
      exit 77
    fi
    VESPERON_SCREEN_TEST=1 exec xvfb-run -a -s "-screen 0 ${size}x24" "$script" "$@"
  fi
  work=$(mktemp -d "${TMPDIR:-/tmp}/vesperon-screen-XXXXXX")
  trap screen_test_cleanup EXIT
  export GSK_RENDERER=cairo GDK_BACKEND=x11 NO_AT_BRIDGE=1 GTK_A11Y=none GIO_USE_VFS=local
  export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0"
  export XDG_CACHE_HOME="$work/cache" XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
}

screen_test_cleanup() {
  for p in ${pid:-} ${dpid:-}; do kill "$p" 2>/dev/null || true; done
  rm -rf "$work"
}

wait_for() {
  for _ in $(seq 300); do
    grep -q "$1" "$work/out" && return 0
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.05
  done
  if declare -F fail >/dev/null; then fail "the program never reported '$1'"; fi
  echo "FAIL: the program never reported '$1'"; cat "$work/out" "$work/err"; exit 1
}
