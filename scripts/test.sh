#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# All tests: first the optimised build with the bundles, then the same tests under the sanitizers.
set -eu
cd "$(dirname "$0")/.."
jobs=$(getconf _NPROCESSORS_ONLN)

cmake --preset release -DCORVANE_TESTS=ON -DCORVANE_WARNINGS_AS_ERRORS=ON
cmake --build --preset release
ctest --preset release -j "$jobs"

cmake --preset asan
cmake --build --preset asan
ctest --preset asan -j "$jobs"
