#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang, AddressSanitizer and UndefinedBehaviorSanitizer
# in their own build folder, then runs each for FUZZ_SECONDS (default 60) from its seed corpus.
# A finding stops that target with its crash file in the build folder and fails the script.
set -uo pipefail
build=${1:-build-fuzz}
seconds=${FUZZ_SECONDS:-60}
sanitizers="-fsanitize=address,undefined -fno-sanitize-recover=undefined"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_C_FLAGS="$sanitizers -fsanitize=fuzzer-no-link" -DCMAKE_CXX_FLAGS="$sanitizers -fsanitize=fuzzer-no-link" \
  -DCMAKE_EXE_LINKER_FLAGS="$sanitizers" -DCMAKE_SHARED_LINKER_FLAGS="$sanitizers" \
  -DVESPERON_BUILD_FUZZERS=ON -DBUILD_TESTING=OFF -DVESPERON_BUILD_BENCHMARKS=OFF >/dev/null || exit 1
targets=()
for source in fuzz/*.cpp; do targets+=("fuzz_$(basename "$source" .cpp)"); done
cmake --build "$build" --target "${targets[@]}" || exit 1
status=0
for target in "${targets[@]}"; do
  name=${target#fuzz_}
  corpus="$build/corpus/$name"
  mkdir -p "$corpus"
  [ -d "fuzz/corpus/$name" ] && cp -n fuzz/corpus/"$name"/* "$corpus"/ 2>/dev/null
  echo "== $target, ${seconds}s"
  (cd "$build" && ./bin/"$target" -max_total_time="$seconds" -max_len=65536 -timeout=10 -rss_limit_mb=2048 \
     -print_final_stats=1 "corpus/$name" 2>&1 | tail -n 12) || status=1
done
exit $status
