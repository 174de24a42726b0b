# SPDX-License-Identifier: GPL-3.0-or-later
"""The two strips: backlit keys of the upper one, logo and menu key of the lower one. Both strips are black.

Needs python3-cairo, python3-numpy, python3-scipy, python3-pil and fonts-urw-base35.
"""
import math
import pathlib

import cairo
import numpy as np
from scipy import ndimage

import about_marks
import front_png
import lettering
import style
from front_relief import Relief, cover, rounded_box, to_linear, to_srgb

KEY = 48
LAMP = (0xFF, 0xB6, 0x4A)  # the light behind the legends


def draw(out):
    out = pathlib.Path(out)
    symbols = {"toolbar-settings": gear, "toolbar-a": letter("A"), "toolbar-b": letter("B"),
               "toolbar-copy-a-to-b": arrow(1), "toolbar-copy-b-to-a": arrow(-1)}
    for name, symbol in symbols.items():
        for suffix, state in (("", "normal"), ("-over", "over"), ("-down", "down")):
            front_png.save(key(symbol, state), out / f"{name}{suffix}.png")
    for suffix, state in (("", "normal"), ("-down", "down")):
        front_png.save(on_black(key(menu, state)), out / f"bar-menu{suffix}.png")
        front_png.save(logo(state), out / f"bar-logo{suffix}.png")


def on_black(picture):
    return picture[..., :3] * (picture[..., 3:] / 255.0)


def key(symbol, state):
    """A small key of black plastic whose legend lets light through."""
    relief = Relief(KEY, KEY, style.BAKELITE)
    relief.z[:] = -6.0
    pressed = state == "down"
    relief.box(4, 4, KEY - 4, KEY - 4, 7.0, top=-3.0 if pressed else 1.5, edge=4.5,
               colour=(0x26, 0x26, 0x28), gloss=0.16 if pressed else 0.24)
    where, X, Y = relief.window(0, 0, KEY, KEY)
    # The cap is dished for a finger.
    dish = np.clip(1.0 - np.hypot(X - KEY / 2, Y - KEY / 2) / 22.0, 0.0, 1.0)
    relief.z -= 2.2 * dish
    picture = relief.shade()
    body = cover(rounded_box(X, Y, 4, 4, KEY - 4, KEY - 4, 7.0))

    layer = lettering.Layer(KEY, KEY)
    layer.context.set_source_rgba(1, 1, 1, 1)
    if pressed:
        layer.context.translate(0, 0.6)
    symbol(layer.context)
    mask = layer.coverage(0.45)
    colour, glow = {
        "normal": (np.array([0.42, 0.39, 0.33]), 0.0),
        "over": (np.array([0.86, 0.80, 0.66]), 0.10),
        "down": (to_linear(LAMP) * 1.15 + 0.10, 0.62),
    }[state]
    halo = ndimage.gaussian_filter(mask, 2.2) * 0.8 + ndimage.gaussian_filter(mask, 6.0)
    picture += glow * halo[..., None] * to_linear(LAMP) * 0.85
    picture += (colour - picture) * mask[..., None]
    alpha = body
    return np.concatenate([to_srgb(picture), 255.0 * alpha[..., None]], axis=2)


def letter(text):
    def symbol(c):
        lettering.path_text(c, text, KEY / 2, KEY / 2, 21.0, 0.0)
        c.fill()
    return symbol


def arrow(direction):
    def symbol(c):
        c.translate(KEY / 2, KEY / 2)
        c.scale(direction, 1)
        c.set_line_width(4.4)
        c.set_line_cap(cairo.LINE_CAP_BUTT)
        c.move_to(-11.5, 0)
        c.line_to(3, 0)
        c.stroke()
        c.move_to(1.5, -8.5)
        c.line_to(12, 0)
        c.line_to(1.5, 8.5)
        c.close_path()
        c.fill()
    return symbol


def gear(c):
    teeth, outer, inner = 8, 12.5, 9.2
    c.translate(KEY / 2, KEY / 2)
    for i in range(teeth):
        a = 2 * math.pi * i / teeth
        for turn, r in ((-0.27, inner), (-0.17, outer), (0.17, outer), (0.27, inner)):
            c.line_to(r * math.cos(a + turn), r * math.sin(a + turn))
    c.close_path()
    c.new_sub_path()
    c.arc_negative(0, 0, 4.6, 2 * math.pi, 0)
    c.close_path()
    c.fill()


def menu(c):
    c.set_line_width(4.0)
    for dy in (-7.5, 0, 7.5):
        c.move_to(KEY / 2 - 10.5, KEY / 2 + dy)
        c.line_to(KEY / 2 + 10.5, KEY / 2 + dy)
        c.stroke()


def logo(state):
    width, height = 228, 48
    layer = lettering.Layer(width, height)
    c = layer.context
    c.set_source_rgba(1, 1, 1, 1)
    about_marks.harbor_mark(c, 28, height / 2, 16.5)
    name, cap, left = "HARBOR GUILD", 16.5, 54
    lettering.path_text(c, name, left, height / 2, cap, lettering.spacing_to_fit(name, cap, width - 8 - left), 0.0)
    c.fill()
    mask = layer.coverage(0.45)[..., None]
    colour = np.array(style.LEGEND_QUIET if state == "normal" else style.LEGEND, np.float32)
    picture = np.zeros((height, width, 3), np.float32)
    if state == "down":
        picture += 46.0 * ndimage.gaussian_filter(mask, (4.0, 4.0, 0.0)) * np.array(LAMP, np.float32) / 255.0
    return picture + (colour - picture) * mask
