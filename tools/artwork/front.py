# SPDX-License-Identifier: GPL-3.0-or-later
"""The main panel's background, front.png: metal first, then uneven studio light, then print.

Needs python3-cairo, python3-numpy, python3-scipy, python3-pil and fonts-urw-base35.
"""
import pathlib

import numpy as np

import front_plates
import front_png
import front_print
from front_layout import Layout
from front_relief import to_srgb


def draw(layout_path, out):
    layout = Layout(layout_path)
    relief = front_plates.build(layout)
    spread = studio_light(relief.height, relief.width)
    picture = to_srgb(relief.shade(spread))
    front_print.build(layout).engrave(picture, (0.92 + 0.08 * spread).astype(np.float32))
    front_png.save(picture, pathlib.Path(out) / "front.png")


def studio_light(height, width):
    """How the soft box lights the front: most above the middle left, less downwards and to the sides."""
    x = np.linspace(0.0, 1.0, width, dtype=np.float32)[None, :]
    y = np.linspace(0.0, 1.0, height, dtype=np.float32)[:, None]
    pool = np.exp(-((x - 0.40) ** 2) / 0.24 - ((y + 0.10) ** 2) / 0.85)
    # A brushed plate throws the box's image across its brush, as an upright pale band.
    sheen = np.exp(-((x - 0.33) ** 2) / 0.022) * np.exp(-(y**2) / 0.5)
    return 0.66 + 0.62 * pool + 0.16 * sheen
