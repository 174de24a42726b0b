#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Optimised bundles and renderer, into build/release. The first time, the framework compiles for some minutes.
set -eu
cd "$(dirname "$0")/.."

cmake --preset release
cmake --build --preset release
