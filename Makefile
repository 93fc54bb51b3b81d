# The front door: each target installs what the machine lacks (on Debian, as
# root), then calls CMake with the preset of the same purpose.
#
#   make demo          the simulated camera: open, stream, convert, write pictures
#   make test          all tests: release, then under the sanitizers
#   make bench         the benchmarks
#   make windows       the 32-bit Windows library, its tool and its package
#   make test-windows  their tests, under Wine
#   make install       the library, headers, tool and Python module (PREFIX, DESTDIR)
#   make package       Debian packages and the Windows archive, in dist
#   make test-package  their tests, lintian's among them
#   make docs          the reference as HTML, in build/docs
#   make abi           record the library's interface anew, after functions were added
#   make format        format the sources      make lint   check the sources
#   make clean         remove everything built
SETUP := scripts/setup-debian.sh
JOBS := $(shell nproc 2>/dev/null || echo 2)

# Where a compiler cache is installed, new build folders use it. Its sloppiness lets it
# take files that include a precompiled header.
ifneq ($(shell command -v ccache 2>/dev/null),)
export CMAKE_C_COMPILER_LAUNCHER ?= ccache
export CMAKE_CXX_COMPILER_LAUNCHER ?= ccache
export CCACHE_SLOPPINESS ?= pch_defines,time_macros
endif

.PHONY: all build product demo test bench windows test-windows install package debian-packages \
  test-package docs abi format lint clean

all: build

build:
	@$(SETUP) build
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS)

# What is installed, without the tests and benchmarks.
product:
	@$(SETUP) build
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS) --target ormidex ormidex_tool ormidex_man

demo: product
	@scripts/demo.sh

test:
	@$(SETUP) build
	@scripts/test.sh release asan tsan

bench:
	@$(SETUP) bench
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS)
	@scripts/bench.sh

windows:
	@$(SETUP) windows
	@scripts/windows-root.sh libjpeg
	@cmake --preset windows > /dev/null
	@cmake --build --preset windows -j $(JOBS)
	@scripts/package-windows.sh

test-windows: windows
	@scripts/windows-root.sh wine
	@scripts/test-windows.sh

PREFIX ?= /usr/local

install: product
	@cmake --install build/release --prefix $(PREFIX)
	@if [ -z "$(DESTDIR)" ] && [ "$$(id -u)" = 0 ]; then ldconfig; fi

package: debian-packages windows

debian-packages:
	@$(SETUP) package
	@JOBS=$(JOBS) scripts/package-debian.sh

test-package: build debian-packages
	@mkdir -p build/results/package
	@ctest --test-dir build/release -C Package -R '^package_test$$' --output-on-failure \
	  --no-tests=error --output-junit $(CURDIR)/build/results/package/ctest.xml

docs:
	@$(SETUP) build
	@scripts/docs.sh

abi: product
	@$(SETUP) package
	@scripts/update-abi.sh build/release/src/frame/libormidex.so.1

format:
	@$(SETUP) format
	@scripts/sources.sh | xargs clang-format -i

lint:
	@$(SETUP) format
	@scripts/lint.sh

clean:
	rm -rf build dist
