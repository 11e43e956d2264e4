# Sourced by the on-screen tests. `screen_test_start SIZE "$0" "$@"` runs the script again under
# a real X server of that size (xvfb-run), or skips it (exit 77) where none can start; in the
# server it makes `$work`, a folder of the test's own, and gives the test what a desktop session
# has, its own: a runtime folder (`$XDG_RUNTIME_DIR`) and a session bus in it, on which GTK finds
# the desktop portal as on a user's machine. It sets the environment: GTK on X11 drawing with
# Cairo, the user's cache, settings and data out of reach, and no leak check in programs built with
# AddressSanitizer (GTK keeps allocations for the life of the process; the unit suites check
# leaks). At the end, the programs in `$pid` and `$dpid`, the bus and every service it started
# stop, what they mounted under `$work` (the document portal's file system) is unmounted, and
# `$work` goes; a test that cannot remove it fails. `wait_for PATTERN` waits up to 15 s for a line of `$work/out` while `$pid` runs,
# then fails with what the program said (through the script's own `fail` when it has one).

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
  # Every process of this test carries its mark, services the bus starts included, so that the
  # cleanup finds them all, however they were started.
  export VESPERON_SCREEN_TEST_WORK="$work"
  export XDG_RUNTIME_DIR="$work/runtime"
  mkdir -m 700 "$XDG_RUNTIME_DIR"
  if command -v dbus-daemon >/dev/null; then
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$XDG_RUNTIME_DIR/bus"
    dbus-daemon --session --fork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS" --print-pid=1 >"$work/bus-pid"
  fi
}

# The processes that carry this test's mark, but for this shell.
screen_test_processes() {
  local environ p
  for environ in /proc/[0-9]*/environ; do
    p=${environ#/proc/}
    p=${p%/environ}
    [ "$p" = "$$" ] || [ "$p" = "${BASHPID:-}" ] && continue
    { tr '\0' '\n' <"$environ"; } 2>/dev/null | grep -qxF "VESPERON_SCREEN_TEST_WORK=$work" && echo "$p"
  done
  return 0
}

screen_test_cleanup() {
  local status=$? p mounts
  for p in ${pid:-} ${dpid:-}; do kill "$p" 2>/dev/null || true; done
  if [ -n "${work:-}" ] && [ -d "$work" ]; then
    for p in $(screen_test_processes); do kill "$p" 2>/dev/null || true; done
    for _ in $(seq 40); do
      [ -z "$(screen_test_processes)" ] && break
      sleep 0.05
    done
    for p in $(screen_test_processes); do kill -9 "$p" 2>/dev/null || true; done
    # A service killed before it unmounted leaves its mount behind; deepest first.
    mounts=$(awk -v w="$work" 'index($2, w "/") == 1 { print $2 }' /proc/mounts | sort -r)
    for p in $mounts; do
      fusermount3 -u -z "$p" 2>/dev/null || umount -l "$p" 2>/dev/null || true
    done
    # What a test leaves behind on a user's machine fails it here too.
    if ! rm -rf "$work" 2>"$work.rm-error" || [ -e "$work" ]; then
      echo "FAIL: the test left $work behind: $(head -3 "$work.rm-error")"
      status=1
    fi
    rm -f "$work.rm-error"
  fi
  exit "$status"
}

# Starts a window manager (openbox) where one is installed, as a desktop has, and sets `wm`; a
# test of what a window manager grants (full screen, placing menus) checks that only with one.
screen_test_window_manager() {
  wm=""
  command -v openbox >/dev/null || return 0
  openbox --sm-disable >/dev/null 2>&1 &
  wm=$!
  for _ in $(seq 100); do
    xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && return 0
    sleep 0.05
  done
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
