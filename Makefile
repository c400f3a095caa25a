# Thin wrapper over CMake. `make demo` and `make test` work on a fresh Debian machine (as root):
# they install what is missing, build, and run.
MAKEFLAGS  += --no-print-directory
BUILD      ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS       ?= 2
CMAKE_ARGS ?=

.PHONY: all deps configure build test test-all demo bench clean help

all: build

help:
	@echo "make deps      install missing Debian packages (needs root)"
	@echo "make build     configure and build into $(BUILD)/"
	@echo "make test      deps + build + the default test set (ctest, slow cases excluded)"
	@echo "make test-all  the same, slow cases included"
	@echo "make demo      deps + build + a demo run of tamlinctl against the array simulator"
	@echo "make bench     build and run the benchmarks"
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

demo: build
	@scripts/demo.sh $(BUILD)

bench: build
	@scripts/bench.sh $(BUILD)

clean:
	rm -rf $(BUILD)
