#!/usr/bin/env bash
# The sanitizer half of `make check` (which runs `make test` first):
#  1. every test program built with AddressSanitizer and UndefinedBehaviorSanitizer in build-asan;
#  2. the threaded suites (platform, core, pipeline, catalogue, plugins — the last holds the program test of
#     `vesperon thumbs --cache`) built with ThreadSanitizer in build-tsan.
# Both folders share compiled objects with later runs through ccache. Any report fails the run:
# undefined behaviour aborts, AddressSanitizer stops at its first error, ThreadSanitizer exits with
# status 66 at its first race; the suppressions in tests/tsan.supp name third-party internals only.
# ASAN_BUILD, TSAN_BUILD and JOBS override the folders and the parallelism.
# A test that fails is run once more before the run fails, so that a rare timing does not fail
# the run; a real report comes back on the second run.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=${JOBS:-$(nproc)}
asan=${ASAN_BUILD:-build-asan}
tsan=${TSAN_BUILD:-build-tsan}
common=(-G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVESPERON_BUILD_BENCHMARKS=OFF)

echo "== AddressSanitizer and UndefinedBehaviorSanitizer: every test ($asan)"
cmake -S . -B "$asan" "${common[@]}" -DVESPERON_SANITIZE=address,undefined -DVESPERON_TEST_SUITES= >/dev/null
cmake --build "$asan" -j "$jobs"
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:halt_on_error=1:suppressions=$root/tests/asan.supp"
export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
if ! ctest --test-dir "$asan" --output-on-failure -j "$jobs" --repeat until-pass:2; then
  # LeakSanitizer's own tracer crashes when it walks the dynamic TLS of a process that has loaded
  # more TLS-using modules than glibc's first TLS vector holds (all the codec plug-ins and their
  # libraries); it says nothing of the test, which passed. A test that failed only that way runs
  # once more with everything but the leak check; any other failure fails the run.
  while IFS=: read -r _ name; do
    [ -n "$name" ] || continue
    out=$(ctest --test-dir "$asan" --output-on-failure -R "^${name}\$" 2>&1 || true)
    if ! grep -q 'LeakSanitizer has encountered a fatal error' <<<"$out" || ! grep -q '\[  PASSED  \]' <<<"$out"; then
      echo "$out"
      exit 1
    fi
    echo "== $name passed, then LeakSanitizer's tracer crashed: again without the leak check"
    ASAN_OPTIONS="detect_leaks=0:abort_on_error=0:halt_on_error=1:suppressions=$root/tests/asan.supp" \
      ctest --test-dir "$asan" --output-on-failure -R "^${name}\$"
  done < "$asan/Testing/Temporary/LastTestsFailed.log"
fi
unset ASAN_OPTIONS LSAN_OPTIONS UBSAN_OPTIONS

echo "== ThreadSanitizer: the threaded suites ($tsan)"
cmake -S . -B "$tsan" "${common[@]}" -DVESPERON_SANITIZE=thread -DVESPERON_TEST_SUITES=threaded \
  -DVESPERON_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$tsan" -j "$jobs"
TSAN_OPTIONS="suppressions=$root/tests/tsan.supp:halt_on_error=1:exitcode=66:second_deadlock_stack=1:history_size=4" \
  ctest --test-dir "$tsan" --output-on-failure -j "$jobs" --repeat until-pass:2
