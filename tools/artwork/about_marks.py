# SPDX-License-Identifier: GPL-3.0-or-later
"""The two marks and the wordmark, as outlines for any cairo context. Needs python3-cairo.

Corvane's mark is a raven's head: an open ring whose opening is crossed by a pointed beak, which is at the same time a
vane and a knob's pointer. Harbor Guild's mark is an H of two piers, tied by a wave, in a round seal.
"""
import math

import cairo


def corvane_mark(c, cx, cy, radius):
    """Leaves the path of ring and beak, to be filled."""
    weight = radius * 0.27
    outer, inner = radius, radius - weight
    opening = math.radians(33)
    tilt = math.radians(-38)
    c.new_path()
    c.arc(cx, cy, outer, tilt + opening, tilt + 2 * math.pi - opening)
    c.arc_negative(cx, cy, inner, tilt + 2 * math.pi - opening * 1.12, tilt + opening * 1.12)
    c.close_path()
    # The beak: from a rounded root inside the ring to a point outside.
    tip = radius * 1.16
    root = radius * 0.36
    back = radius * 0.27
    ux, uy = math.cos(tilt), math.sin(tilt)
    c.new_sub_path()
    c.move_to(cx + ux * tip, cy + uy * tip)
    c.line_to(cx - uy * back + ux * root * 0.1, cy + ux * back + uy * root * 0.1)
    c.arc(cx - ux * root * 0.1, cy - uy * root * 0.1, back, tilt + math.pi / 2, tilt + 3 * math.pi / 2)
    c.close_path()


def corvane_word(c, x, y, height, weight=0.155, gap=0.34):
    """Strokes the wordmark, its left edge at x and its middle at y; returns its width. The caller sets the source."""
    h, s = height, height * weight
    top, bottom = y - h / 2.0, y + h / 2.0
    t, b = top + s / 2.0, bottom - s / 2.0
    mid = y
    pen = x
    c.set_line_width(s)
    c.set_line_cap(cairo.LINE_CAP_BUTT)
    c.set_line_join(cairo.LINE_JOIN_MITER)
    c.set_miter_limit(12)
    r = h / 2.0 - s / 2.0

    def finish(width, kern=0.0):
        nonlocal pen
        c.stroke()
        pen += width + h * (gap + kern)

    # C, open by 41 degrees to either side
    a = math.radians(41)
    c.new_path()
    c.arc(pen + h / 2.0, mid, r, a, 2 * math.pi - a)
    finish(h * 0.90)
    # O
    c.arc(pen + h / 2.0, mid, r, 0, 2 * math.pi)
    c.close_path()
    finish(h)
    # R
    width = h * 0.66
    bowl = h * 0.57
    c.move_to(pen + s / 2, bottom)
    c.line_to(pen + s / 2, t)
    c.line_to(pen + width - bowl / 2, t)
    c.arc(pen + width - bowl / 2, t + (bowl - s) / 2, (bowl - s) / 2, -math.pi / 2, math.pi / 2)
    c.line_to(pen + s / 2, t + bowl - s)
    c.stroke()
    c.move_to(pen + width * 0.42, t + bowl - s)
    c.line_to(pen + width - s * 0.58, bottom)
    finish(width, -0.12)
    # V
    width = h * 0.86
    lean = s * 0.54
    c.save()
    c.rectangle(pen - s, top, width + 2 * s, h)
    c.clip()
    c.move_to(pen + lean - 0.06 * h, top - 0.12 * h)
    c.line_to(pen + width / 2, b - s * 0.35)
    c.line_to(pen + width - lean + 0.06 * h, top - 0.12 * h)
    c.stroke()
    c.restore()
    pen += width + h * (gap - 0.24)
    # A, the V turned over, without its bar
    c.save()
    c.rectangle(pen - s, top, width + 2 * s, h)
    c.clip()
    c.move_to(pen + lean - 0.06 * h, bottom + 0.12 * h)
    c.line_to(pen + width / 2, t + s * 0.35)
    c.line_to(pen + width - lean + 0.06 * h, bottom + 0.12 * h)
    c.stroke()
    c.restore()
    pen += width + h * (gap - 0.08)
    # N
    width = h * 0.76
    c.save()
    c.rectangle(pen - 1, top, width + 2, h)
    c.clip()
    c.move_to(pen + s / 2, bottom)
    c.line_to(pen + s / 2, top - h)
    c.stroke()
    c.move_to(pen + width - s / 2, bottom + h)
    c.line_to(pen + width - s / 2, top)
    c.stroke()
    c.move_to(pen + s * 0.62, top)
    c.line_to(pen + width - s * 0.62, bottom)
    c.set_line_width(s * 1.08)
    c.set_line_cap(cairo.LINE_CAP_SQUARE)
    c.stroke()
    c.restore()
    c.set_line_width(s)
    pen += width + h * gap
    # E
    width = h * 0.58
    c.move_to(pen + width, t)
    c.line_to(pen + s / 2, t)
    c.line_to(pen + s / 2, b)
    c.line_to(pen + width, b)
    c.stroke()
    c.move_to(pen + s / 2, mid)
    c.line_to(pen + width * 0.90, mid)
    c.stroke()
    return pen + width - x


def corvane_word_width(height, weight=0.155, gap=0.34):
    c = cairo.Context(cairo.ImageSurface(cairo.FORMAT_A8, 8, 8))
    return corvane_word(c, 0, 0, height, weight, gap)


def q7(c, x, y, height, weight=0.155):
    """Strokes the model's name in the wordmark's manner, its left edge at x; returns its width."""
    h, s = height, height * weight
    top, bottom = y - h / 2.0, y + h / 2.0
    c.set_line_width(s)
    c.set_line_cap(cairo.LINE_CAP_BUTT)
    c.set_line_join(cairo.LINE_JOIN_MITER)
    c.new_path()
    c.arc(x + h / 2.0, y, h / 2.0 - s / 2.0, 0, 2 * math.pi)
    c.close_path()
    c.stroke()
    c.move_to(x + h * 0.58, y + h * 0.16)
    c.line_to(x + h * 0.98, y + h * 0.53)
    c.stroke()
    left, width = x + h * 1.16, h * 0.66
    c.save()
    c.rectangle(left - 1, top - 1, width + 2, h + 1)
    c.clip()
    c.move_to(left, top + s / 2)
    c.line_to(left + width - s * 0.72, top + s / 2)
    c.line_to(left + width * 0.30, bottom + s)
    c.stroke()
    c.restore()
    return h * 1.16 + width


def q7_width(height, weight=0.155):
    return q7(cairo.Context(cairo.ImageSurface(cairo.FORMAT_A8, 8, 8)), 0, 0, height, weight)


def harbor_mark(c, cx, cy, radius):
    """Strokes and fills the seal in the caller's source."""
    s = radius * 0.13
    c.new_path()
    c.set_line_width(s)
    c.arc(cx, cy, radius - s / 2, 0, 2 * math.pi)
    c.close_path()
    c.stroke()
    # Two piers, each with a small cap, standing in the water.
    half, pier = radius * 0.40, radius * 0.23
    top, foot = cy - radius * 0.52, cy + radius * 0.52
    for side in (-1, 1):
        x = cx + side * half
        c.rectangle(x - pier / 2, top, pier, foot - top)
        c.fill()
    # The wave that ties them.
    c.set_line_width(radius * 0.17)
    c.set_line_cap(cairo.LINE_CAP_BUTT)
    reach = half
    c.move_to(cx - reach, cy + radius * 0.02)
    c.curve_to(cx - reach * 0.45, cy - radius * 0.26, cx - reach * 0.1, cy - radius * 0.14, cx, cy)
    c.curve_to(cx + reach * 0.1, cy + radius * 0.14, cx + reach * 0.45, cy + radius * 0.26,
               cx + reach, cy - radius * 0.02)
    c.stroke()
