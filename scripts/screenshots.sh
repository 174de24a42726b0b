#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Pictures of the editor in all its states. Usage: screenshots.sh [FOLDER]   (build/screenshots when none is named)
#        screenshots.sh --renew   writes the pictures that the tests compare with, after a change that is meant to be seen
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh build test

# A build that is there keeps what was chosen for it, the tests above all.
if [ -f build/release/CMakeCache.txt ]; then
    cmake -S . -B build/release -DCORVANE_VIEWS=ON
else
    cmake --preset release -DCORVANE_VIEWS=ON
fi

cmake --build --preset release --target corvane-views

# The framework places menus on a display: they are shown on a screen without a monitor.
take() {
    python3 tests/support/with_screen.py build/release/tools/views/corvane-views "$@"
}

if [ "${1:-}" = --renew ]; then
    folder=tests/views/references
    rm -f "$folder"/*.png
    take --out "$folder" --references

    # They stay in the repository for ever: as small as they can be without a loss.
    if command -v optipng >/dev/null 2>&1; then
        optipng -quiet -o5 -strip all "$folder"/*.png
    else
        echo "optipng is not installed: the pictures are larger than they need be" >&2
    fi

    du -ch "$folder"/*.png | tail -n 1
else
    take --out "${1:-build/screenshots}"
fi
