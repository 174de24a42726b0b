#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what `make build` made: below PREFIX (and DESTDIR) when one is given, otherwise into the user's own folders,
# where hosts look without being told.
set -eu
cd "$(dirname "$0")/.."

# "Open Manual..." looks in one place, whatever the prefix: below the system's applications folder.
install_manual() {
    manual="docs/Corvane Q7 Manual.pdf"
    [ -f "$manual" ] || return 0

    applications=/usr
    [ "$(uname)" != Darwin ] || applications=/Applications
    folder="${DESTDIR:-}$applications/Harbor Guild/Corvane Q7"

    if mkdir -p "$folder" 2>/dev/null && cp "$manual" "$folder/" 2>/dev/null; then
        echo "$folder/Corvane Q7 Manual.pdf"
    else
        echo "The manual stays in docs: only root may write to $folder, where the plug-in looks for it."
    fi
}

if [ -n "${PREFIX:-}" ] || [ -n "${DESTDIR:-}" ]; then
    cmake --install build/release --prefix "${PREFIX:-/usr/local}"
    install_manual
    exit 0
fi

bundles=build/release/source/plugin/CorvaneQ7_artefacts/Release

put() { # what, into which folder
    mkdir -p "$2"
    rm -rf "$2/$(basename "$1")"
    cp -R "$1" "$2/"
    echo "$2/$(basename "$1")"
}

put "$bundles/VST3/CorvaneQ7.vst3" "$HOME/.vst3"
put "$bundles/LV2/CorvaneQ7.lv2" "$HOME/.lv2"
put "$bundles/Standalone/CorvaneQ7" "$HOME/.local/bin"
put build/release/tools/render/corvane-render "$HOME/.local/bin"
install_manual
