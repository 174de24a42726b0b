# SPDX-License-Identifier: GPL-3.0-or-later
"""The toggle switch, drawn by POV-Ray from toggle.pov: bat down is off, bat up is on."""

import pathlib
import subprocess
import tempfile

import numpy as np

import style
import solids.studio as studio

WIDTH, HEIGHT = 140, 158
DETAIL = 5
SCENE = pathlib.Path(__file__).with_name("toggle.pov")
PICTURE, MASK, SHADOW, PLATE = range(4)


def render(turned_on, which):
    x, y, z = style.LIGHT
    declared = {"On": int(turned_on), "Pass": which, "BoxX": x, "BoxY": -y, "BoxZ": -z, "BoxAcross": studio.BOX_ACROSS,
                "BoxAlong": studio.BOX_ALONG, "Room": studio.ROOM}
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "out.ppm"
        command = ["povray", f"+I{SCENE}", f"+O{out}", f"+W{WIDTH * DETAIL}", f"+H{HEIGHT * DETAIL}", "+FP16", "File_Gamma=1.0", "-D",
                   "-A", "+WT1", "-GA"] + [f"Declare={k}={v}" for k, v in declared.items()]
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


def draw(turned_on):
    picture = studio.to_srgb(render(turned_on, PICTURE))
    mask = (render(turned_on, MASK)[..., 0] > 0.5).astype(float)
    lamp = render(turned_on, SHADOW)[..., 0] / np.maximum(render(turned_on, PLATE)[..., 0], 1e-4)
    light = np.clip(lamp, 0, 1) * (1 - studio.ROOM) + studio.ROOM
    shadow = studio.shadow_alpha(light)

    x, y = np.meshgrid((np.arange(WIDTH * DETAIL) + 0.5) / DETAIL, (np.arange(HEIGHT * DETAIL) + 0.5) / DETAIL)
    to_edge = np.minimum(np.minimum(x, WIDTH - x), np.minimum(y, HEIGHT - y))
    shadow *= studio.smoothstep(0, 22, to_edge)
    # A lamp stands below and to the left; nothing may lie over it.
    shadow *= 1 - studio.smoothstep(104, 117, y) * (1 - studio.smoothstep(57, 74, x))

    colour, alpha = studio.over((picture, mask), (np.zeros_like(picture), shadow))
    small = studio.reduced(alpha, DETAIL)
    return studio.reduced(colour * alpha[..., None], DETAIL) / np.maximum(small, 1e-6)[..., None], small


def make(folder):
    studio.save(folder / "switch-off.png", *draw(False))
    studio.save(folder / "switch-on.png", *draw(True))
