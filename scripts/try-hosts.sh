#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the built bundles through Ardour 7 without a screen or a sound card: session made, saved, opened again, bounced,
# and the bounce held against the renderer. Debian packages: ardour, sox. See docs/HOSTS.md.
set -eu
cd "$(dirname "$0")/.."

bundles=$PWD/build/release/source/plugin/CorvaneQ7_artefacts/Release
render=$PWD/build/release/tools/render/corvane-render
loop=$PWD/tools/demo/demo-loop.wav
lua=$PWD/tests/hosts
FRAMES=$(soxi -s "$loop")
VST3_ID=ABCDEF019182FAEB4372766E43767137
export FRAMES VST3_ID

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME="$work/home"
mkdir -p "$HOME/.vst3" "$HOME/.lv2" "$HOME/Corvane Plugins"
cp -r "$bundles/VST3/CorvaneQ7.vst3" "$HOME/.vst3"
cp -r "$bundles/LV2/CorvaneQ7.lv2" "$HOME/.lv2"
sleep 1.1 # the host's cache of plug-ins counts whole seconds, and must be younger than the bundle
LD_LIBRARY_PATH=/usr/lib/ardour7 /usr/lib/ardour7/ardour-vst3-scanner -q -f "$HOME/.vst3/CorvaneQ7.vst3"

ardour() {
    timeout 120 ardour7-lua "$lua/$1" > "$work/log" 2>&1 || { cat "$work/log"; exit 1; }
    grep -E '^(made|back|latency)' "$work/log" # the host has remarks of its own
}

# try NAME FORMAT SECONDS-OF-SILENCE-BEFORE RENDERER-OPTIONS...; the host's side comes in SET, PROGRAM and LATENCY.
# Behind a bounce's start VST3 is prepared anew, while LV2 has been running on silence.
try() {
    name=$1; export FORMAT="$2"; silence=$3; shift 3
    echo; echo "== $name ($FORMAT)"
    export SESSION="$work/$name"
    files=$SESSION/interchange/$name/audiofiles
    ardour ardour-make.lua
    sox -V1 "$loop" -b 32 -e float "$files/loop%L.wav" remix 1
    sox -V1 "$loop" -b 32 -e float "$files/loop%R.wav" remix 2
    sed -i 's/fade-in-active="1" fade-out-active="1"/fade-in-active="0" fade-out-active="0"/' "$SESSION/try.ardour"
    ardour ardour-check.lua
    sox -V1 -M "$files/bounced%L.wav" "$files/bounced%R.wav" "$work/host.wav"
    sox -V1 "$loop" "$work/in.wav" pad "$silence" 0
    "$render" --quiet --force "$@" "$work/in.wav" "$work/long.wav"
    sox -V1 "$work/long.wav" "$work/renderer.wav" trim "$silence"
    sox -V1 -m -v 1 "$work/host.wav" -v -1 "$work/renderer.wav" -n stat 2>&1 |
        awk '/RMS +amplitude/ { print "difference from the renderer, RMS:", $3; good = $3 < 0.00001 }
             END { exit !good }'
}

export LATENCY=0
export SET="4=0.2857143 5=1 6=0.2666667 13=0.4761905 15=0.3333333 24=0.2 27=0.8 28=0.3 29=0.4 30=0.4 37=0.55"
try settings VST3 0 --set-normalised LowGain=0.2857143 --set-normalised LowRatio=1 \
    --set-normalised LowThreshold=0.2666667 --set-normalised MidGain=0.4761905 \
    --set-normalised MidThreshold=0.3333333 --set-normalised HighThreshold=0.2 --set-normalised Mix=0.8 \
    --set-normalised HPF=0.3 --set-normalised MasterGain=0.4 --set-normalised LowXOver=0.4 \
    --set-normalised OutLevel=0.55

unset SET
export PROGRAM="Drum Bus Smash"
try program VST3 0 --program "$PROGRAM"
try program-lv2 LV2 2 --program "$PROGRAM"

unset PROGRAM
printf '<?xml version="1.0"?>\n<PROPERTIES><VALUE name="Oversampling" val="4"/></PROPERTIES>\n' \
    > "$HOME/Corvane Plugins/Corvane Q7.settings"
LATENCY=52
try oversampled VST3 0 --oversampling 4
try oversampled-lv2 LV2 2 --oversampling 4
echo; echo "Both bundles came through."
