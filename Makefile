# SPDX-License-Identifier: MIT
PRESET ?= release
BUILD := build/$(PRESET)
JOBS ?= $(shell nproc)

.PHONY: all packages configure demo test test-release test-asan test-tsan bench clean

all: packages
	@cmake --preset $(PRESET) >/dev/null
	@cmake --build --preset $(PRESET) -j $(JOBS)

packages:
	@tools/install-packages cmake/packages.txt

# The main job on the example scene, and a picture of each style of text; results go to build/demo.
demo: packages
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS) --target zr
	@tools/demo build/release/bin/zr build/demo

test: test-release test-asan test-tsan

test-release: packages
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS)
	@ctest --preset release -j $(JOBS)

test-asan: packages
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j $(JOBS)
	@ctest --preset asan -j $(JOBS)

# The programs that start threads.
test-tsan: packages
	@cmake --preset tsan >/dev/null
	@cmake --build --preset tsan -j $(JOBS) --target thread_tests
	@ctest --preset tsan -j $(JOBS) -L threads

bench: packages
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS)
	@for bench in $(BUILD)/bin/*_bench; do $$bench || exit 1; done

clean:
	rm -rf build
