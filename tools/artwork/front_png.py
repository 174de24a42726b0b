# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes PNG files without dates. Needs python3-numpy and python3-pil; optipng is used where it is installed."""
import pathlib
import shutil
import subprocess

import numpy as np
from PIL import Image


def save(picture, path):
    """picture: rows x columns x 3 or 4, sRGB 0 to 255; alpha, if there, 0 to 255 and not premultiplied."""
    data = np.clip(np.rint(picture), 0, 255).astype(np.uint8)
    path = pathlib.Path(path)
    Image.fromarray(data, "RGBA" if data.shape[2] == 4 else "RGB").save(path, optimize=True)
    if shutil.which("optipng"):
        # Neither palette nor grey: the channels are part of what is promised of each file.
        subprocess.run(["optipng", "-quiet", "-o2", "-nb", "-nc", "-np", "-strip", "all", str(path)], check=True)
    return path


def from_cairo(surface):
    """A cairo ARGB surface as rows x columns x 4, not premultiplied."""
    surface.flush()
    data = np.ndarray((surface.get_height(), surface.get_width(), 4), np.uint8, surface.get_data()).astype(np.float32)
    alpha = data[..., 3:4]
    colour = np.where(alpha > 0, data[..., 2::-1] * 255.0 / np.maximum(alpha, 1.0), 0.0)
    return np.concatenate([np.clip(colour, 0, 255), alpha], axis=2)
