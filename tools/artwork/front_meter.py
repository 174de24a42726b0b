# SPDX-License-Identifier: GPL-3.0-or-later
"""The meters' face and glass: meter-scale.png and meter-glass.png. The needle between them is drawn by the program.

Needs python3-cairo, python3-numpy, python3-scipy, python3-pil and fonts-urw-base35.
"""
import pathlib

import numpy as np
from scipy import ndimage

import front_png
import lettering
import style
from front_layout import Layout
from front_relief import rounded_box, smoothstep, to_linear, to_srgb

S = style.SCALE
RULE = 29.0  # the line between the two scales, base pixels
CAP = 15.0
NEEDLE = -0.5  # the needle's two lines lie at y - 1 and y, so its middle is half a pixel above the reading


def draw(layout_path, out):
    meter = Layout(layout_path).meter
    front_png.save(scale(meter), pathlib.Path(out) / "meter-scale.png")
    front_png.save(glass(meter), pathlib.Path(out) / "meter-glass.png")


def grid(meter):
    width, height = meter["width"] * S, meter["height"] * S
    X, Y = np.meshgrid(np.arange(width, dtype=np.float32) + 0.5, np.arange(height, dtype=np.float32) + 0.5)
    return width, height, X, Y


def scale(meter):
    width, height, X, Y = grid(meter)
    # Two small bulbs behind the paper, and the paper's fibres.
    u, v = X / width - 0.5, Y / height
    glow = 0.50 * np.exp(-(u**2) / 0.42) * (np.exp(-((v - 0.30) ** 2) / 0.10) + np.exp(-((v - 0.72) ** 2) / 0.10))
    rim = -rounded_box(X, Y, 0, 0, width, height, 6.0)
    glow = (0.46 + 0.94 * glow) * (0.55 + 0.45 * smoothstep(0.0, 26.0, rim))
    fibre = ndimage.gaussian_filter(np.random.default_rng(0x9A9E).standard_normal((height, width)), 1.4)
    glow *= 1.0 + 0.012 * fibre / fibre.std()
    # Less light is also warmer light.
    paper = to_linear(style.PAPER)
    warm = np.stack([glow, glow**1.22, glow**1.65], axis=2)
    picture = to_srgb(np.clip(paper * warm, 0.0, 1.0))

    black, red = lettering.Layer(width, height), lettering.Layer(width, height)
    print_scales(meter, black, red)
    for layer, colour in ((red, style.PRINT_RED), (black, style.PRINT)):
        mask = layer.coverage(0.55)[..., None] * 0.94
        # Ink takes light from behind too, but little.
        ink = np.array(colour, np.float32) * np.clip(0.55 + 0.45 * glow[..., None], 0, 1.1)
        picture += (ink - picture) * mask
    return picture


def print_scales(meter, black, red):
    level, reduction = ([dict(m, y=m["y"] + NEEDLE) for m in meter[kind]] for kind in ("level", "gainReduction"))
    x = RULE * S
    top, bottom = min(m["y"] for m in level) * S, max(m["y"] for m in level) * S
    zero = next(m["y"] for m in level if m["value"] == 0) * S
    # Level on the left; the part above zero stands in red.
    black.line(x - 4, zero, x - 4, bottom + 1.5, 3.0)
    red.line(x - 4.5, top - 1.5, x - 4.5, zero, 4.0)
    for mark in level:
        layer = red if mark["value"] > 0 else black
        y = mark["y"] * S
        long = mark["major"]
        layer.line(x - (20 if long else 14), y, x - 3, y, 3.6 if long else 3.0, 1.0 if long else 0.85)
        if mark["label"]:
            layer.text(mark["label"], x - 24, y, CAP, 0.0, align=1.0)
    # Gain reduction on the right.
    top, bottom = min(m["y"] for m in reduction) * S, max(m["y"] for m in reduction) * S
    black.line(x + 4, top - 1.5, x + 4, bottom + 1.5, 3.0)
    for mark in reduction:
        y = mark["y"] * S
        long = mark["major"]
        black.line(x + 3, y, x + (20 if long else 14), y, 3.6 if long else 3.0, 1.0 if long else 0.85)
        if mark["label"]:
            black.text(mark["label"], x + 25, y, CAP, 0.0, align=0.0)
    head = 15.0 * S
    black.text("dB", x - 12, head, CAP, 0.03, align=1.0)
    black.text("GR", x + 12, head, CAP, 0.03, align=0.0)


def glass(meter):
    width, height, X, Y = grid(meter)
    # The frame's shadow: cast downwards and a little to the right, so deep at the upper and left edge.
    inside = -rounded_box(X - 2.0, Y - 7.0, 0, 0, width + 8, height + 16, 10.0)
    cast = 0.62 * smoothstep(16.0, -6.0, inside)
    edge = -rounded_box(X, Y, 0, 0, width, height, 5.0)
    hug = 0.52 * smoothstep(9.0, -1.0, edge)
    corners = 1.0 * smoothstep(0.8, -0.8, edge)
    dark = 1.0 - (1.0 - cast) * (1.0 - hug) * (1.0 - corners)
    # The soft box's reflection: a pale field with a slanted lower rim, strongest at the top left.
    field = smoothstep(34.0, -34.0, (Y - 0.40 * height) + 0.95 * (X - 0.5 * width))
    fade = np.clip(1.0 - 0.75 * Y / height, 0.0, 1.0)
    side = smoothstep(3.0, 10.0, edge)
    shine = 0.085 * field * fade * side
    # A thin catch-light on the lower bevel of the pane.
    lip = 0.20 * np.exp(-(((height - Y) - 4.0) / 1.8) ** 2) * smoothstep(4.0, 14.0, np.minimum(X, width - X))
    shine = np.maximum(shine, lip)
    alpha = shine + dark * (1.0 - shine)
    white = np.array([255.0, 250.0, 240.0], np.float32)
    colour = white * np.where(alpha > 0, shine / np.maximum(alpha, 1e-4), 0.0)[..., None]
    return np.concatenate([colour, 255.0 * alpha[..., None]], axis=2)
