# The two commands of a fresh machine:
#   make run   — install what is missing, build, run the main job on samples/
#   make test  — install what is missing, build, run every test
#   make check — make test, then every test under AddressSanitizer and UndefinedBehaviorSanitizer
#                (build-asan/), then the threaded suites under ThreadSanitizer (build-tsan/)
#   make docs  — the API reference (Doxygen) of every public header, in build/docs/api/html/
BUILD_DIR ?= build
# ccache keys objects by paths relative to the checkout, so that every clone (CI's included) and
# every build folder share them.
export CCACHE_BASEDIR ?= $(CURDIR)
export CCACHE_NOHASHDIR ?= 1
JOBS ?= $(shell nproc)

.PHONY: setup configure build run test check bench fuzz clean install docs

setup:
	@bash scripts/setup.sh

configure: setup
	@cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	@bash scripts/run-main-job.sh $(BUILD_DIR)

test: build
	@cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS) --repeat until-pass:2

check: test
	@JOBS=$(JOBS) bash scripts/run-sanitized-tests.sh

bench: build
	@bash scripts/run-benchmarks.sh $(BUILD_DIR)

fuzz:
	@bash scripts/run-fuzzers.sh

# The API reference in $(BUILD_DIR)/docs/api/html/index.html; an undocumented public name fails it.
docs: configure
	@cmake --build $(BUILD_DIR) --target docs

install: build
	@cmake --install $(BUILD_DIR)

clean:
	@rm -rf $(BUILD_DIR) build-asan build-tsan
