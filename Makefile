# SPDX-License-Identifier: MIT
PRESET ?= release
BUILD := build/$(PRESET)
JOBS ?= $(shell nproc)

.PHONY: all packages demo test test-release test-asan test-tsan bench windows windows-packages windows-test clean

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

# The module and its core library for Windows, 32 and 64 bit. The 64-bit tests run under Wine.
windows-packages: packages
	@tools/install-packages cmake/packages-windows.txt

windows: windows-packages
	@cmake --preset windows-x86 >/dev/null
	@cmake --build --preset windows-x86 -j $(JOBS)
	@cmake --preset windows-x64 >/dev/null
	@cmake --build --preset windows-x64 -j $(JOBS)

windows-test: windows
	@ctest --preset windows-x86
	@tools/with-wine ctest --preset windows-x64

clean:
	rm -rf build
