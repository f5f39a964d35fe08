# Thin: each target has the packages installed (scripts/setup), then runs CMake with a preset or a script.
JOBS ?= $(shell nproc)
WERROR ?= $(if $(CI),ON,OFF)
CONFIGURE = cmake -DMAILENGINE_WERROR=$(WERROR) --log-level=WARNING --preset
BUILD = cmake --build --parallel $(JOBS) --preset
TEST = ctest --parallel $(JOBS) --preset

.PHONY: help demo desktop test sanitize bench fuzz packages format lint clean

help:
	@echo "make demo      set up, build; write a Japanese mail, have it checked, read, answer and send it"
	@echo "make desktop   set up, build, and start the program with windows"
	@echo "make test      set up, build, and run all tests"
	@echo "make sanitize  the tests under the address and undefined behaviour sanitizers"
	@echo "make bench     the benchmarks, beside their yardsticks"
	@echo "make fuzz      the fuzzers, each for 20 seconds; SECONDS=1200 for longer"
	@echo "make packages  Debian packages of all this, in build/packages/packages"
	@echo "make format    format the sources; make lint checks format, code and house rules"
	@echo "make clean     remove what was built"

demo:
	@scripts/setup demo
	@$(CONFIGURE) release -DMAILENGINE_BUILD_TESTS=OFF -DMAILENGINE_BUILD_DESKTOP=OFF
	@$(BUILD) release
	@scripts/demo

desktop:
	@scripts/setup desktop
	@$(CONFIGURE) release -DMAILENGINE_BUILD_TESTS=OFF -DMAILENGINE_BUILD_DESKTOP=ON
	@$(BUILD) release
	@build/release/bin/mailengine-desktop

test:
	@scripts/setup desktop test
	@$(CONFIGURE) release -DMAILENGINE_BUILD_TESTS=ON -DMAILENGINE_BUILD_DESKTOP=ON
	@$(BUILD) release
	@$(TEST) release

sanitize:
	@scripts/setup desktop test
	@$(CONFIGURE) sanitize
	@$(BUILD) sanitize
	@$(TEST) sanitize

bench:
	@scripts/setup bench
	@$(CONFIGURE) bench
	@$(BUILD) bench
	@for program in build/bench/bin/bench-*; do $$program || exit 1; done

SECONDS = 20
fuzz:
	@scripts/setup fuzz
	@scripts/fuzz $(SECONDS)

packages:
	@scripts/setup packages
	@scripts/packages

format:
	@scripts/setup lint
	@scripts/sources | xargs clang-format-14 -i

lint:
	@scripts/setup desktop lint
	@$(CONFIGURE) lint
	@scripts/lint

clean:
	rm -rf build
