#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# The concurrency tests under the thread sanitizer. What the plain hand-over of settings means by design is listed, with
# its reason, in tests/tsan-suppressions.txt; any other finding fails.
set -eu
cd "$(dirname "$0")/.."

cmake --preset tsan
cmake --build --preset tsan --target corvane_tests
TSAN_OPTIONS="suppressions=$PWD/tests/tsan-suppressions.txt halt_on_error=0 exitcode=66" \
    build/tsan/tests/corvane_tests --gtest_filter='Threads*:UserDefaultsThreads*'
