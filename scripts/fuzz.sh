#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# libFuzzer with the address and undefined-behaviour sanitizers, from the seed corpus: first the session reader, then the
# engine behind it. Arguments go to both; without any each runs for 60 seconds. What they find lies in build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."

cmake --preset fuzz
cmake --build --preset fuzz --target corvane_state_fuzzer corvane_engine_fuzzer

mkdir -p build/fuzz/findings
[ $# -gt 0 ] || set -- -max_total_time=60

# A session that takes more than a second, or more than 1 GB with all that the sanitizer holds back, is a finding.
for part in state engine; do
    mkdir -p "build/fuzz/corpus-$part"
    "build/fuzz/tests/fuzz/corvane_${part}_fuzzer" -timeout=1 -rss_limit_mb=1024 -max_len=70000 \
        -artifact_prefix=build/fuzz/findings/ "$@" "build/fuzz/corpus-$part" tests/fuzz/corpus
done
