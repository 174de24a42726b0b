# SPDX-License-Identifier: GPL-3.0-or-later
# The everyday commands. All logic stands in CMake or in a script; `make demo` and `make test` are each enough on a
# bare Debian 12 machine with `make`, since they install the packages that they need.

.PHONY: help demo build test bench golden-check golden-print artwork screenshots fuzz fuzz-bundles tsan install uninstall format tidy clean

help:
	@echo "make demo         build, render the demo loop through three programs, say where everything lies"
	@echo "make build        optimised bundles and renderer, into build/release"
	@echo "make test         all tests, optimised and under the sanitizers"
	@echo "make bench        nanoseconds per frame of every stage and of the whole; cost of the window"
	@echo "make golden-check  today's samples and meters against the stored ones, bit for bit"
	@echo "make golden-print  store today's anew; the commit says what is heard to differ"
	@echo "make artwork      every bitmap of the editor and its font, from their sources"
	@echo "make screenshots  pictures of the editor in all its states, into build/screenshots"
	@echo "make fuzz         libFuzzer on the session reader and the engine behind it, a minute each"
	@echo "make fuzz-bundles 500,000 hostile sessions through each built bundle, within limits of memory and time"
	@echo "make tsan         the concurrency tests under the thread sanitizer"
	@echo "make install      bundles and renderer into your own folders, or below PREFIX (and DESTDIR)"
	@echo "make uninstall    takes them away again, and nothing else; PREFIX and DESTDIR as before"
	@echo "make format       lay the sources out as .clang-format says"
	@echo "make tidy         clang-tidy over source/; what has not changed since it was found clean is passed over"

demo: build
	@scripts/demo.sh

build:
	@scripts/install-packages.sh build
	@scripts/build.sh

test:
	@scripts/install-packages.sh build test bench fuzz format
	@scripts/test.sh

bench:
	@scripts/install-packages.sh build test bench
	@scripts/bench.sh

golden-check golden-print:
	@scripts/install-packages.sh build test
	@scripts/golden.sh $@

artwork:
	@scripts/install-packages.sh build artwork
	@scripts/artwork.sh

screenshots:
	@scripts/screenshots.sh

fuzz:
	@scripts/install-packages.sh build fuzz
	@scripts/fuzz.sh

fuzz-bundles:
	@scripts/install-packages.sh build test
	@scripts/fuzz-bundles.sh

tsan:
	@scripts/install-packages.sh build test
	@scripts/tsan.sh

install:
	@PREFIX="$(PREFIX)" DESTDIR="$(DESTDIR)" python3 scripts/install.py

uninstall:
	@PREFIX="$(PREFIX)" DESTDIR="$(DESTDIR)" python3 scripts/install.py --uninstall

format:
	@scripts/install-packages.sh format
	@git ls-files '*.h' '*.cpp' | xargs clang-format -i

tidy:
	@scripts/install-packages.sh build test format
	@cmake --preset release -DCORVANE_TESTS=ON
	@cmake --build --preset release --target corvane_assets
	@python3 tests/checks/check_tidy.py build/release

clean:
	rm -rf build demo-output
