# SPDX-License-Identifier: GPL-3.0-or-later
"""The toggle switch: bat down is off, bat up is on.

Washer, hex nut and bushing are a relief of satin steel. The bat overhangs, so POV-Ray draws it, from toggle.pov: its
picture, its outline, and the shadow that it throws on the rest.
"""

import pathlib
import subprocess
import tempfile

import numpy as np
from scipy import ndimage

import style
import solids.relief as relief
import solids.studio as studio

WIDTH, HEIGHT = 140, 158
AXIS = (70.0, 70.0)
DETAIL = 4
SCENE = pathlib.Path(__file__).with_name("toggle.pov")
PICTURE, BAT, LIT_WITH, LIT_WITHOUT = range(4)

WASHER, NUT_CORNER, NUT_BORE, BUSHING, HOLE = 37.0, 32.0, 15.6, 15.0, 12.2  # radii
WASHER_TOP, NUT_TOP, BUSHING_TOP = 3.2, 14.0, 18.0
NUT_TURN = 12.0  # degrees; a nut that sat square would look drawn with a ruler


def render(turned_on, which):
    x, y, z = style.LIGHT
    declared = {"On": int(turned_on), "Pass": which, "BoxX": x, "BoxY": -y, "BoxZ": -z, "BoxAcross": studio.BOX_ACROSS,
                "BoxAlong": studio.BOX_ALONG}
    # The satin of the picture needs many rays in every point; outline and shadow need them at edges alone.
    rays = ["+A0.0", "+AM1", "+R3"] if which == PICTURE else ["+A0.1", "+AM1", "+R2"]
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "out.ppm"
        size = [f"+W{WIDTH * DETAIL}", f"+H{HEIGHT * DETAIL}"]
        settings = ["+FP16", "File_Gamma=1.0", "-D", "-J", "+WT1", "-GA"]
        command = ["povray", f"+I{SCENE}", f"+O{out}"] + size + settings + rays
        command += [f"Declare={k}={v}" for k, v in declared.items()]
        done = subprocess.run(command, capture_output=True, text=True, check=False, cwd=folder)
        if done.returncode != 0:
            raise RuntimeError("povray failed:\n" + done.stderr[-3000:])
        return read_ppm(out)


def read_ppm(path):
    """A binary PPM of 16 bits per channel, 0 to 1."""
    data = path.read_bytes()
    fields, at = [], 0
    while len(fields) < 4:
        end = at
        while not data[end : end + 1].isspace():
            end += 1
        fields.append(data[at:end])
        at = end + 1
        while data[at : at + 1] == b"#":
            at = data.index(b"\n", at) + 1
    width, height, top = (int(f) for f in fields[1:])
    return np.frombuffer(data, ">u2", width * height * 3, at).reshape(height, width, 3) / top


def grid():
    x, y = np.meshgrid((np.arange(WIDTH * DETAIL) + 0.5) / DETAIL, (np.arange(HEIGHT * DETAIL) + 0.5) / DETAIL)
    return x - AXIS[0], y - AXIS[1]


def seat():
    """Washer, nut and bushing: linear RGB, their outline, and the light that they leave on the plate."""
    x, y = grid()
    r = np.hypot(x, y)
    # Distance to the nearest flat of the hexagon, negative inside.
    angles = np.radians(60 * np.arange(6) + 30 - NUT_TURN)
    flats = np.max([x * np.cos(a) + y * np.sin(a) for a in angles], axis=0) - NUT_CORNER * np.cos(np.pi / 6)

    washer = np.where(r < WASHER, WASHER_TOP * np.clip((WASHER - r) / 1.6, 0, 1) ** 0.6, 0)
    sides = np.clip(-flats / 1.2, 0, 1)
    cone = np.clip(NUT_TOP - (r - 25.8) * 0.50, WASHER_TOP, NUT_TOP)  # corners turned off, as on every real nut
    nut = np.where(flats < 0, WASHER_TOP + (cone - WASHER_TOP) * sides, 0)
    nut = np.where(r < NUT_BORE + 1.5, NUT_TOP - 1.6 * (NUT_BORE + 1.5 - r) / 1.5, nut)
    height = np.maximum(washer, nut)
    thread = BUSHING_TOP - np.clip((r - (BUSHING - 2.2)) / 2.2, 0, 1) * 1.8
    height = np.where(r < BUSHING, thread, height)
    height = np.where((r >= BUSHING) & (r < NUT_BORE), 9.0, height)
    height = np.where(r < HOLE, 8.0 + 10.0 * np.clip((r - 8.0) / (HOLE - 8.0), 0, 1), height)
    height = np.where(r < 8.0, 2.0, height)
    height = ndimage.gaussian_filter(height, 0.40 * DETAIL) * DETAIL

    coarse = studio.reduced(height, 2) / 2
    lamp = relief.light_share(coarse, studio.soft_box(7, 5), step=1.5, softness=1.2)
    hall = relief.light_share(coarse, relief.room(14, 4), step=1.5, softness=1.2, reach=60)
    lamp, hall = (np.repeat(np.repeat(a, 2, axis=0), 2, axis=1) for a in (lamp, hall))

    steel = studio.to_linear(style.ALUMINIUM)
    black = studio.to_linear(style.ANODISED)
    on_nut = ((flats < 0) | (r < NUT_BORE)).astype(float)
    on_nut = ndimage.gaussian_filter(on_nut, 0.3 * DETAIL)
    hole = 1 - studio.smoothstep(HOLE - 1.5, HOLE - 0.4, r)
    share = (on_nut * (1 - hole))[..., None]
    metal = relief.Material(
        albedo=black * (1 - share) * (1 - 0.7 * hole[..., None]) + steel * 0.06 * share,
        mirror=0.085 * (1 - share) * (1 - 0.6 * hole[..., None]) + steel * 0.92 * share,
        rough_x=0.26 - 0.06 * share[..., 0],
        rough_y=0.34 + 0.12 * share[..., 0],
    )
    length = np.maximum(r, 1e-6)
    lit = relief.shade(relief.normals(height), metal, studio.soft_box(13, 7), lamp, hall, (-y / length, x / length))
    outline = 1 - studio.smoothstep(WASHER - 0.5, WASHER + 0.3, r)
    return lit, outline, lamp * (1 - studio.ROOM) + hall * studio.ROOM


def draw(turned_on, base, without):
    lit, outline, light = base
    picture, bat = render(turned_on, PICTURE), render(turned_on, BAT)[..., 0]
    thrown = np.where(without > 0.03, render(turned_on, LIT_WITH)[..., 0] / np.maximum(without, 0.03), 1)
    thrown = ndimage.gaussian_filter(np.clip(thrown, 0, 1), 0.3 * DETAIL)
    left = studio.ROOM + (1 - studio.ROOM) * thrown

    x, y = grid()
    shadow = studio.grounded(studio.shadow_alpha(light * left), 0.05)
    x, y = x + AXIS[0], y + AXIS[1]
    to_edge = np.minimum(np.minimum(x, WIDTH - x), np.minimum(y, HEIGHT - y))
    shadow *= studio.smoothstep(0, 26, to_edge)
    # A lamp stands below and to the left; nothing may lie over it.
    shadow *= 1 - studio.smoothstep(100, 117, y) * (1 - studio.smoothstep(57, 78, x))

    out = studio.over((studio.to_srgb(lit * left[..., None]), outline), (np.zeros_like(lit), shadow))
    colour, alpha = studio.over((studio.to_srgb(picture), bat), out)
    small = studio.reduced(alpha, DETAIL)
    return studio.reduced(colour * alpha[..., None], DETAIL) / np.maximum(small, 1e-6)[..., None], small


def make(folder):
    base = seat()
    without = render(False, LIT_WITHOUT)[..., 0]
    studio.save(folder / "switch-off.png", *draw(False, base, without))
    studio.save(folder / "switch-on.png", *draw(True, base, without))
