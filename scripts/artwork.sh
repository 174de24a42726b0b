#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes every bitmap of the editor and its font anew, from the layout as the program has it now. The results are
# committed: a normal build needs none of this.
set -eu
cd "$(dirname "$0")/.."

cmake --preset release -DCORVANE_VIEWS=ON
cmake --build --preset release --target corvane-views
build/release/tools/views/corvane-views --geometry tools/artwork/front.json

# Debian's own Python: the drawing modules are installed for it.
/usr/bin/python3 tools/artwork/make_artwork.py --out source/assets/images
/usr/bin/python3 tools/font/make_segment7.py
git --no-pager status --short source/assets tools/artwork/front.json
