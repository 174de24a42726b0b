#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# All tests: first the optimised build with bundles and benchmarks, then the same tests under the sanitizers. The fuzz
# targets run their corpus in both; that clang's build of them configures is seen here too.
set -eu
cd "$(dirname "$0")/.."
jobs=$(getconf _NPROCESSORS_ONLN)

cmake --preset release -DCORVANE_TESTS=ON -DCORVANE_BENCHMARKS=ON -DCORVANE_WARNINGS_AS_ERRORS=ON
cmake --build --preset release
ctest --preset release -j "$jobs"

cmake --preset asan
cmake --build --preset asan
ctest --preset asan -j "$jobs"

cmake --preset fuzz
