#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# The concurrency tests under the thread sanitizer, with nothing suppressed: any finding fails.
set -eu
cd "$(dirname "$0")/.."

cmake --preset tsan
cmake --build --preset tsan --target corvane_tests
TSAN_OPTIONS="halt_on_error=0 exitcode=66" build/tsan/tests/corvane_tests \
    --gtest_filter='Threads*:HandOver*:LatestValue*:ChannelSettings*Threads*:*Link*Thread*:UserDefaultsThreads*'
