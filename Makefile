# SPDX-License-Identifier: MIT
JOBS ?= $(shell nproc)
PREFIX ?= /usr/local

# On a terminal ninja rewrites a single progress line; elsewhere it prints only failures.
QUIET := $(if $(MAKE_TERMOUT),,-- --quiet)

# $(call build,PRESET,OPTIONS,TARGET)
build = echo "building $(3) in build/$(1)" && cmake --preset $(1) $(2) >/dev/null && cmake --build --preset $(1) -j $(JOBS) --target $(3) $(QUIET)
# $(call packages,LISTS): the program's packages and those of the named lists.
packages = tools/install-packages cmake/packages.txt $(patsubst %,cmake/packages-%.txt,$(1))

.PHONY: all install demo test test-release test-asan test-tsan test-report fuzz mutations bench bench-peers bench-reduction check tidy coverage \
	shipped package package-test bare-test dist dist-linux dist-windows windows windows-packages windows-test clean

all:
	@$(call packages,qt)
	@$(call build,release,-DZR_BUILD_TESTS=OFF -DZR_BUILD_BENCH=OFF,all)

install: all
	@cmake --install build/release --prefix "$(PREFIX)" >/dev/null

# The main job on the example scene, and a picture of each style of text.
demo:
	@$(call packages,)
	@$(call build,demo,,zr)
	@tools/demo build/demo/bin/zr build/demo/results

# One build for both: many files are compiled as one, with the address and undefined-behaviour sanitizers.
test: test-asan test-tsan

# The tests against the program as installed, and the examples.
test-release:
	@$(call packages,qt test)
	@$(call build,release,-DZR_BUILD_TESTS=ON -DZR_BUILD_BENCH=OFF,all)
	@ctest --preset release -j $(JOBS)

test-asan:
	@$(call packages,qt test)
	@$(call build,asan,,all)
	@ctest --preset asan -j $(JOBS)

# The programs that start threads.
test-tsan:
	@$(call packages,qt test)
	@$(call build,tsan,,thread_tests)
	@ctest --preset tsan -j $(JOBS) -L threads

# The report page in a headless browser.
test-report:
	@$(call packages,qt test report browser)
	@$(call build,release,-DZR_BUILD_TESTS=ON -DZR_WITH_REPORT=ON,zr)
	@ctest --preset release -R report_page

# Random and damaged input, each fuzzer for FUZZ_SECONDS; for a longer search: make fuzz FUZZ_SECONDS=600
FUZZ_SECONDS ?= 30
fuzz:
	@$(call packages,fuzz)
	@$(call build,fuzz,,fuzzers)
	@FUZZ_SECONDS=$(FUZZ_SECONDS) tools/fuzz build/fuzz

# Scenes with a few things changed, through every command, under the sanitizers.
MUTATIONS ?= 10000
mutations:
	@$(call packages,qt test)
	@$(call build,asan,,app_mutations_test)
	@ZR_MUTATIONS=$(MUTATIONS) LSAN_OPTIONS=suppressions=tests/lsan.supp:print_suppressions=0 \
		build/asan/bin/app_mutations_test

bench:
	@$(call packages,qt bench)
	@$(call build,release,-DZR_BUILD_BENCH=ON,all)
	@for bench in build/release/bin/*_bench; do $$bench || exit 1; done

# zr beside other tools on the same scenes, as tables; scenes and tools go to build/peers.
bench-peers:
	@$(call packages,qt bench peers)
	@$(call build,release,-DZR_BUILD_BENCH=ON,zr make_scene floor key_error)
	@tools/bench-peers build/release/bin build/peers

# Keys left at equal error, for scenes of your own: make bench-reduction SCENES="a.glb b.glb"
bench-reduction: bench-peers
	@tools/bench-reduction build/release/bin build/peers $(SCENES)

# Static checks, fast ones.
check:
	@$(call packages,qt test bench check)
	@tools/check-layers
	@tools/check-links
	@tools/check-format
	@cmake --preset check >/dev/null
	@tools/check-code build/check

# clang-tidy, the slow static check: about three minutes of CPU.
tidy:
	@$(call packages,qt test bench check)
	@cmake --preset tidy >/dev/null
	@tools/tidy build/tidy

# Line coverage of the tests by folder; fails below 90 percent.
coverage:
	@$(call packages,qt test report browser coverage)
	@$(call build,coverage,,all)
	@rm -rf build/coverage/profiles
	@ctest --preset coverage -j $(JOBS)
	@tools/coverage build/coverage

# Shipped builds always include the report page.
shipped:
	@$(call packages,qt report)
	@$(call build,release,-DZR_BUILD_TESTS=OFF -DZR_BUILD_BENCH=OFF -DZR_WITH_REPORT=ON,all)

# Debian packages, in build/release/packages.
package: shipped
	@$(call packages,package)
	@cpack --config build/release/CPackConfig.cmake -G DEB >/dev/null

# Relocatable archives, in build/PRESET/packages.
dist: dist-linux dist-windows

dist-linux: shipped
	@cpack --config build/release/CPackConfig.cmake -G TGZ >/dev/null

dist-windows: windows-packages
	@$(call packages,report)
	@$(call build,windows-x86,-DZR_BUILD_TESTS=OFF -DZR_WITH_REPORT=ON,all)
	@$(call build,windows-x64,-DZR_BUILD_TESTS=OFF -DZR_WITH_REPORT=ON,all)
	@for preset in windows-x64 windows-x86; do cpack --config build/$$preset/CPackConfig.cmake >/dev/null || exit 1; done

# Tests packages and archive in a bare system. Needs root.
package-test: package dist-linux
	@tools/test-packages build/release/packages

# make demo and make test in a bare system with only git and make. Needs root.
bare-test:
	@$(call packages,package)
	@tools/test-bare demo test

# The program, the module and its core library for Windows, 32 and 64 bit.
windows-packages:
	@$(call packages,windows)
	@tools/debian-source build/debian-sources libpolyclipping re2 meshoptimizer draco

windows: windows-packages
	@$(call build,windows-x86,-DZR_BUILD_TESTS=OFF,all)
	@$(call build,windows-x64,-DZR_BUILD_TESTS=OFF,all)

# The Windows tests, under Wine. The tests of the commands run natively and call the Windows program. Needs root.
windows-test: windows-packages
	@$(call packages,qt test)
	@$(call build,release,-DZR_BUILD_TESTS=ON -DZR_BUILD_BENCH=OFF,command_tests)
	@$(call build,windows-x86,-DZR_BUILD_TESTS=ON,all)
	@$(call build,windows-x64,-DZR_BUILD_TESTS=ON,all)
	@tools/wine32-root build/wine32
	@ZR_WINE32=$(CURDIR)/build/wine32 tools/with-wine ctest --preset windows-x86
	@tools/with-wine ctest --preset windows-x64

clean:
	rm -rf build
