#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Hostile sessions through the built bundles, VST3 and LV2 side by side, by the interfaces that hosts use: valid sessions and
# the corpus, damaged in up to six ways, the wrapper's own bytes around them included. Each process has limits: 1 GB of
# address space, 2 s of processor time a session, 4 h in all. What stops one lies in build/fuzz-bundles/last-vst3 or -lv2.
# Usage: fuzz-bundles.sh [SESSIONS-A-BUNDLE [SEED]]     500000 and 1 when not named
set -eu
cd "$(dirname "$0")/.."
count=${1:-500000}
seed=${2:-1}

# A build that is there keeps what was chosen for it.
if [ -f build/release/CMakeCache.txt ]; then
    cmake -S . -B build/release -DCORVANE_TESTS=ON
else
    cmake --preset release -DCORVANE_TESTS=ON
fi
cmake --build --preset release --target corvane_bundle_fuzzer

bundles=build/release/source/plugin/CorvaneQ7_artefacts/Release
out=build/fuzz-bundles
mkdir -p "$out/home" "$out/seeds"
rm -f "$out"/seeds/*
cp tests/fuzz/corpus/* "$out/seeds/"

# Sessions of released versions, as the blocks that hosts hold: magic, length, text, zero.
python3 - "$out/seeds" <<'PYTHON'
import pathlib, shutil, struct, sys
for file in pathlib.Path("tests/states").glob("v*.*"):
    target = pathlib.Path(sys.argv[1], file.name)
    if file.suffix == ".xml":
        text = file.read_bytes().rstrip(b"\n")
        target.write_bytes(struct.pack("<II", 0x21324356, len(text)) + text + b"\0")
    else:
        shutil.copy(file, target)
PYTHON

run() { # kind, library
    HOME="$PWD/$out/home" nice build/release/tests/corvane_bundle_fuzzer "$1" "$2" "$count" 0 "$seed" "$out/last-$1" \
        "$out"/seeds/* || { echo "$1: ended with status $?; the session: $out/last-$1" >&2; return 1; }
}

run vst3 "$bundles/VST3/CorvaneQ7.vst3/Contents/x86_64-linux/CorvaneQ7.so" & vst3=$!
run lv2 "$bundles/LV2/CorvaneQ7.lv2/libCorvaneQ7.so" & lv2=$!
status=0
wait $vst3 || status=1
wait $lv2 || status=1
exit $status
