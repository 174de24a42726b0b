#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# libFuzzer on the session reader, with the address and undefined-behaviour sanitizers, from the seed corpus. Arguments go
# to the fuzzer; without any it runs for 60 seconds. What it finds lies in build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."

cmake --preset fuzz
cmake --build --preset fuzz --target corvane_state_fuzzer

mkdir -p build/fuzz/corpus build/fuzz/findings build/fuzz/home
[ $# -gt 0 ] || set -- -max_total_time=60

# One second an input and 512 MB in all: a session that takes more is a finding.
HOME="$PWD/build/fuzz/home" build/fuzz/tests/fuzz/corvane_state_fuzzer -timeout=1 -rss_limit_mb=512 -max_len=70000 \
    -artifact_prefix=build/fuzz/findings/ "$@" build/fuzz/corpus tests/fuzz/corpus
