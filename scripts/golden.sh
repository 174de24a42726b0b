#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# The golden table: `golden.sh golden-check` holds today's samples against it, `golden.sh golden-print` writes it anew.
set -eu
cd "$(dirname "$0")/.."

cmake --preset release -DCORVANE_TESTS=ON
cmake --build --preset release --target corvane_golden

case "$1" in
    golden-print) build/release/tests/golden/corvane_golden --print ;;
    *) build/release/tests/golden/corvane_golden --gtest_brief=1 ;;
esac
