# SPDX-License-Identifier: GPL-3.0-or-later
"""The About box: about-background.png, about-brand.png, about-distributor.png. The program writes its texts over them.

Needs python3-cairo, python3-numpy, python3-scipy, python3-pil and fonts-urw-base35.
"""
import pathlib

import numpy as np
from scipy import ndimage

import about_marks
import front_plates
import front_png
import lettering
import style
from front_relief import Relief, to_srgb

S = style.SCALE


def draw(out):
    out = pathlib.Path(out)
    front_png.save(background(), out / "about-background.png")
    front_png.save(metal(180, 72, brand, style.BRASS), out / "about-brand.png")
    front_png.save(metal(276, 64, distributor, style.LEGEND), out / "about-distributor.png")


def background():
    """A plate of the unit's own metal: logos on the left of a groove, credits on its right, the link below."""
    width, height = 450 * S, 300 * S
    relief = Relief(width, height, style.PLATE)
    relief.z[:] = -8.0
    # The program clips to a radius of 20; the plate's edge follows it.
    relief.box(2.5, 2.5, width - 2.5, height - 2.5, 19 * S, top=0.0, edge=7.0, colour=(0x1B, 0x1D, 0x20), gloss=0.14)
    relief.albedo *= front_plates.brushed(relief)[..., None]
    front_plates.groove(relief, 155 * S, 24 * S, 155 * S, 250 * S)
    front_plates.groove(relief, 24 * S, 264 * S, 426 * S, 264 * S)
    # The mark, pressed faintly into the metal.
    layer = lettering.Layer(width, height)
    layer.context.set_source_rgba(1, 1, 1, 1)
    about_marks.corvane_mark(layer.context, 366 * S, 176 * S, 66 * S)
    layer.context.fill()
    mask = layer.coverage(0.8)
    relief.z -= 0.9 * ndimage.gaussian_filter(mask, 2.5)
    relief.albedo *= (1.0 - 0.13 * mask)[..., None]
    x = np.linspace(0.0, 1.0, width, dtype=np.float32)[None, :]
    y = np.linspace(0.0, 1.0, height, dtype=np.float32)[:, None]
    spread = 0.62 + 0.55 * np.exp(-((x - 0.32) ** 2) / 0.5 - (y**2) / 0.7)
    return to_srgb(relief.shade(spread))


def brand(c, width, height):
    about_marks.corvane_mark(c, width / 2 - 2, 22, 19)
    c.fill()
    word = 20.0
    gap = 0.34
    while about_marks.corvane_word_width(word, gap=gap) < width - 14:
        gap += 0.005
    about_marks.corvane_word(c, (width - about_marks.corvane_word_width(word, gap=gap)) / 2, height - 14, word, gap=gap)


def distributor(c, width, height):
    about_marks.harbor_mark(c, 31, height / 2, 27)
    c.set_source_rgba(1, 1, 1, 1)
    cap, left = 20.0, 70
    spacing = lettering.spacing_to_fit("HARBOR GUILD", cap, width - 8 - left)
    lettering.path_text(c, "HARBOR GUILD", left, height / 2, cap, spacing, 0.0)
    c.fill()


def metal(width, height, drawing, colour):
    """A mark of raised metal on nothing: shaded letters and their shadow, with alpha."""
    layer = lettering.Layer(width, height)
    layer.context.set_source_rgba(1, 1, 1, 1)
    drawing(layer.context, width, height)
    mask = layer.coverage(0.5)
    relief = Relief(width, height, colour)
    rise = np.minimum(ndimage.distance_transform_edt(mask > 0.5), 3.0)
    relief.z[:] = ndimage.gaussian_filter(rise, 0.8)
    relief.gloss[:] = 0.22
    picture = to_srgb(relief.shade())
    shadow = 0.75 * ndimage.gaussian_filter(ndimage.shift(mask, (2.2, 0.8), order=1), 1.5)
    alpha = mask + shadow * (1.0 - mask)
    picture *= (mask / np.maximum(alpha, 1e-4))[..., None]
    return np.concatenate([picture, 255.0 * alpha[..., None]], axis=2)
