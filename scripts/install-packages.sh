#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian packages of the named groups that are missing, as root or through sudo, and says which.
# Usage: install-packages.sh GROUP...   with the groups build, test, bench, artwork, fuzz, format
set -eu

packages_of() {
    case "$1" in
        build)  echo "build-essential cmake ninja-build pkg-config ccache python3 juce-modules-source juce-tools" \
                     "libsndfile1-dev libebur128-dev libcli11-dev nlohmann-json3-dev" ;;
        test)   echo "libgtest-dev libgmock-dev lilv-utils sordi lv2-dev hydrogen-drumkits alsa-utils" \
                     "xvfb xdotool openbox fonts-liberation" ;;
        fuzz)   echo "clang libclang-rt-14-dev" ;;
        bench)  echo "libbenchmark-dev" ;;
        artwork) echo "povray povray-includes python3-cairo python3-fontforge python3-numpy python3-pil python3-scipy" \
                      "fonts-urw-base35 optipng" ;;
        format) echo "clang-format clang-tidy" ;;
        *)      echo "install-packages.sh: no group '$1'" >&2; exit 2 ;;
    esac
}

# Elsewhere the tools come from the system's own source; CMake says what it misses.
command -v dpkg-query >/dev/null 2>&1 || exit 0

wanted=
for group in "$@"; do
    wanted="$wanted $(packages_of "$group")"
done

missing=
for package in $wanted; do
    case "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)" in
        installed) ;;
        *) missing="$missing $package" ;;
    esac
done

[ -n "$missing" ] || exit 0
echo "Installing:$missing"

as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null 2>&1 || { echo "Please install these packages as root:$missing" >&2; exit 1; }
    as_root=sudo
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086
if ! { $as_root apt-get update &&
       $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1
then
    cat "$log" >&2
    exit 1
fi
