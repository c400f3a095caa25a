# Thin wrapper over CMake. `make demo` and `make test` work on a fresh Debian machine (as root):
# they install what is missing, build, and run.
MAKEFLAGS  += --no-print-directory
BUILD      ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS       ?= 2
CMAKE_ARGS ?=

.PHONY: all deps configure build test test-all test-asan test-tsan demo bench install package clean help

all: build

help:
	@echo "make deps      install missing Debian packages (needs root)"
	@echo "make build     configure and build into $(BUILD)/"
	@echo "make test      deps + build + the default test set (ctest, slow cases excluded)"
	@echo "make test-all  the same, slow cases included"
	@echo "make test-asan the default set under AddressSanitizer, UndefinedBehaviorSanitizer and leak checks (build-asan/)"
	@echo "make test-tsan the concurrency suites under ThreadSanitizer (build-tsan/)"
	@echo "make demo      deps + build + a demo run of tamlinctl against the array simulator"
	@echo "make bench     build and run the benchmarks"
	@echo "make install   install the provider, tamlinctl and the kit (DESTDIR=dir to stage)"
	@echo "make package   the Debian packages tamlin, tamlin-dev and evasim, checked by lintian"
	@echo "make clean     remove $(BUILD)/"

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_ARGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j$(JOBS)

test: build
	@cd $(BUILD) && ctest -LE slow --output-on-failure -j$(JOBS) --timeout 600

test-all: build
	@cd $(BUILD) && ctest --output-on-failure -j$(JOBS) --timeout 1200

test-asan:
	@$(MAKE) test BUILD=build-asan CMAKE_ARGS="$(CMAKE_ARGS) -DTAMLIN_SANITIZE=address,undefined -DTAMLIN_BUILD_BENCH=OFF"

test-tsan:
	@$(MAKE) build BUILD=build-tsan CMAKE_ARGS="$(CMAKE_ARGS) -DTAMLIN_SANITIZE=thread -DTAMLIN_BUILD_BENCH=OFF"
	@cd build-tsan && ctest -L concurrency --output-on-failure -j$(JOBS) --timeout 1200

demo: build
	@scripts/demo.sh $(BUILD)

bench: build
	@scripts/bench.sh $(BUILD)

install: build
	@DESTDIR="$(DESTDIR)" cmake --install $(BUILD)

package: deps
	@scripts/package.sh $(BUILD)

clean:
	rm -rf $(BUILD)
