#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Renders the demo loop through three programs and says where the results and the bundles lie.
set -eu
cd "$(dirname "$0")/.."

loop=tools/demo/demo-loop.wav
render=build/release/tools/render/corvane-render
out=demo-output
mkdir -p "$out"

for program in "Mixbus Start Here" "Drum Bus Smash" "Vocals Male Rock"; do
    name=$(echo "$program" | tr ' [:upper:]' '-[:lower:]')
    echo
    echo "== $program"
    "$render" --force --program "$program" --oversampling 4 --bits 24 --meters "$out/$name.csv" "$loop" "$out/$name.wav"
    python3 tools/demo/plot_demo.py --before "$loop" --after "$out/$name.wav" --meters "$out/$name.csv" \
        --title "Demo loop through \"$program\"" --output "$out/$name.svg"
done

bundles=build/release/source/plugin/CorvaneQ7_artefacts/Release
echo
echo "Listen:   $loop, then $out/*.wav"
echo "Look:     $out/*.svg"
echo "VST3:     $bundles/VST3/CorvaneQ7.vst3"
echo "LV2:      $bundles/LV2/CorvaneQ7.lv2"
echo "Program:  $bundles/Standalone/CorvaneQ7"
echo "Renderer: $render --help"
echo "'make install' puts them where hosts look for them."
