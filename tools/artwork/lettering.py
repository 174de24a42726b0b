# SPDX-License-Identifier: GPL-3.0-or-later
"""Lettering of the console front: letterspaced capitals as outlines, engraved and filled with paint.

Needs the Debian packages python3-cairo, python3-numpy, python3-scipy and fonts-urw-base35. Lengths are bitmap pixels.
"""
import math

import cairo
import numpy as np
from scipy import ndimage

import style

CAP_HEIGHT = 0.729  # of the face, in ems

# The face is used without its kerning table, so the few pairs that would gape are closed here, in ems.
PAIRS = {"AT": -0.07, "TA": -0.07, "AU": -0.02, "OV": -0.02, "VE": -0.02, "RY": -0.03, "YP": -0.02, "PA": -0.06,
         "1.": -0.02, ".5": -0.01, "0.": -0.01}


class Layer:
    """One colour's coverage of a whole bitmap, drawn with cairo."""

    def __init__(self, width, height):
        self.surface = cairo.ImageSurface(cairo.FORMAT_A8, width, height)
        self.context = cairo.Context(self.surface)
        self.context.set_antialias(cairo.ANTIALIAS_BEST)

    def coverage(self, blur=0.5):
        """The coverage, 0 to 1, softened so that it survives a scaler that reads four pixels only."""
        self.surface.flush()
        stride = self.surface.get_stride()
        data = np.frombuffer(self.surface.get_data(), np.uint8).reshape(self.surface.get_height(), stride)
        mask = data[:, : self.surface.get_width()].astype(np.float32) / 255.0
        return ndimage.gaussian_filter(mask, blur) if blur else mask

    def line(self, x0, y0, x1, y1, width, alpha=1.0):
        c = self.context
        c.set_source_rgba(1, 1, 1, alpha)
        c.set_line_width(width)
        c.move_to(x0, y0)
        c.line_to(x1, y1)
        c.stroke()

    def text(self, text, x, y, cap, spacing, align=0.5):
        """Draws text whose capitals are `cap` high, their middle on y; align 0 starts at x, 0.5 centres, 1 ends."""
        path_text(self.context, text, x, y, cap, spacing, align)
        self.context.set_source_rgba(1, 1, 1, 1)
        self.context.fill()


def select(context, cap):
    options = cairo.FontOptions()
    options.set_hint_style(cairo.HINT_STYLE_NONE)
    options.set_hint_metrics(cairo.HINT_METRICS_OFF)
    options.set_antialias(cairo.ANTIALIAS_GRAY)
    context.set_font_options(options)
    context.select_font_face(style.FACE, cairo.FONT_SLANT_NORMAL, cairo.FONT_WEIGHT_BOLD)
    context.set_font_size(cap / CAP_HEIGHT)


def advances(context, text, cap, spacing):
    """Where each letter's pen stands, and the left and right edge of the ink, all from the first pen."""
    em = cap / CAP_HEIGHT
    pen, xs = 0.0, []
    for i, letter in enumerate(text):
        xs.append(pen)
        pen += context.text_extents(letter).x_advance + spacing * em + PAIRS.get(text[i : i + 2], 0.0) * em
    first, last = context.text_extents(text[0]), context.text_extents(text[-1])
    left = first.x_bearing
    right = xs[-1] + last.x_bearing + last.width
    return xs, left, right


_measure = cairo.Context(cairo.ImageSurface(cairo.FORMAT_A8, 8, 8))


def width(text, cap, spacing):
    """Width of the ink."""
    select(_measure, cap)
    _, left, right = advances(_measure, text, cap, spacing)
    return right - left


def spacing_to_fit(text, cap, room, widest=0.30):
    """The letterspacing, in ems, with which the text fills this width, but no wider than asked."""
    gaps = max(1, len(text) - 1)
    return min(widest, (room - width(text, cap, 0.0)) / (gaps * cap / CAP_HEIGHT))


def path_text(context, text, x, y, cap, spacing, align=0.5):
    select(context, cap)
    xs, left, right = advances(context, text, cap, spacing)
    start = x - left - (right - left) * align
    for letter, offset in zip(text, xs):
        context.move_to(start + offset, y + cap * 0.5)
        context.text_path(letter)


def shifted(mask, dy):
    return ndimage.shift(mask, (dy, 0.0), order=1, mode="constant", cval=0.0)


def engrave(picture, mask, colour, light=1.0, depth=1.3, dark_edge=0.62, light_edge=22.0):
    """Fills an engraving with paint. picture: rows x columns x 3, sRGB 0 to 255, changed in place.

    The upper wall of a groove lies in shadow and the lower one faces the light: a hairline of dark above
    and of light below the paint. light scales the paint, a number or an array as large as the mask.
    """
    above = np.clip(shifted(mask, -depth) - mask, 0, 1)
    below = np.clip(shifted(mask, depth) - mask, 0, 1)
    # The paint lies a little below the surface, so that its upper rim is shaded by the wall.
    shade = 1.0 - 0.22 * np.clip(mask - shifted(mask, depth), 0, 1)
    for channel in range(3):
        plane = picture[..., channel]
        plane *= 1.0 - dark_edge * above
        plane += light_edge * below * light
        plane += (colour[channel] * light * shade - plane) * mask


def place_mark_label(cx, cy, angle, radius, half_width, half_height):
    """Centre of a label whose ellipse just touches a circle of this radius; degrees clockwise from straight up."""
    s, c = math.sin(math.radians(angle)), -math.cos(math.radians(angle))
    reach = radius + math.hypot(half_width * s, half_height * c)
    return cx + reach * s, cy + reach * c
