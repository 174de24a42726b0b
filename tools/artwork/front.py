# SPDX-License-Identifier: GPL-3.0-or-later
"""The main panel's background, front.png: metal first, then uneven studio light, then print.

Needs python3-cairo, python3-numpy, python3-scipy, python3-pil and fonts-urw-base35.
"""
import pathlib

import numpy as np

import front_plates
import front_png
import front_print
import style
from front_layout import Layout
from front_relief import smoothstep, to_srgb

KNOB_RADIUS, KNOB_HEIGHT = 0.39, 0.17  # of a knob's rectangle's width


def draw(layout_path, out):
    layout = Layout(layout_path)
    relief = front_plates.build(layout)
    spread = studio_light(relief.height, relief.width)
    shadow = knob_shadows(relief, layout)
    picture = to_srgb(relief.shade(spread * shadow))
    front_print.build(layout).engrave(picture, (0.92 + 0.08 * spread) * shadow**0.35)
    front_png.save(picture, pathlib.Path(out) / "front.png")


def knob_shadows(relief, layout):
    """The wide soft shadows of the knobs on the plate, 1 in the open.

    The knobs' own bitmaps end at their rectangles and hold only what lies close to them.
    """
    light = np.ones((relief.height, relief.width), np.float32)
    sx, sy = style.SHADOW_PER_HEIGHT
    for knob in layout.knobs:
        w = knob["w"] * style.SCALE
        cx, cy = (knob["x"] + knob["w"] / 2) * style.SCALE, (knob["y"] + knob["h"] / 2) * style.SCALE
        where, X, Y = relief.window(cx - w, cy - w, cx + w, cy + w)
        dark = np.zeros(X.shape, np.float32)
        # From foot to top the body's outline moves down the light, and its edge grows softer.
        for step in range(1, 9):
            rise = KNOB_HEIGHT * w * step / 8
            d = np.hypot(X - cx - sx * rise, Y - cy - sy * rise) - KNOB_RADIUS * w
            soft = 0.035 * w + 0.55 * rise
            np.maximum(dark, smoothstep(soft, -soft, d) * (1.0 - 0.35 * step / 8), out=dark)
        light[where] *= 1.0 - 0.46 * dark
    return light


def studio_light(height, width):
    """How the soft box lights the front: most above the middle left, less downwards and to the sides."""
    x = np.linspace(0.0, 1.0, width, dtype=np.float32)[None, :]
    y = np.linspace(0.0, 1.0, height, dtype=np.float32)[:, None]
    pool = np.exp(-((x - 0.40) ** 2) / 0.24 - ((y + 0.10) ** 2) / 0.85)
    # A brushed plate throws the box's image across its brush, as an upright pale band.
    sheen = np.exp(-((x - 0.33) ** 2) / 0.022) * np.exp(-(y**2) / 0.5)
    return 0.66 + 0.62 * pool + 0.16 * sheen
