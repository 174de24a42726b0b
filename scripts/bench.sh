#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Benchmarks of the optimised build. Arguments go to the benchmark program, e.g. --benchmark_filter=Whole; without any, each
# runs three times, and the medians are what docs/PERFORMANCE.md gives.
set -eu
cd "$(dirname "$0")/.."

cmake --preset release -DCORVANE_BENCHMARKS=ON
cmake --build --preset release --target corvane_bench corvane_bench_editor
[ $# -gt 0 ] || set -- --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
build/release/bench/corvane_bench "$@"
python3 tests/support/with_screen.py build/release/bench/corvane_bench_editor
