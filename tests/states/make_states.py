#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the sessions of version 1.0.0 beside this script, from a table of its own.

They stand for what users' projects hold, so they are kept for good: a later version adds files and changes none.
Every number is the nearest 32-bit float, printed with 20 decimals, as hosts have stored it.
"""
import math
import struct
from decimal import Decimal
from pathlib import Path

HERE = Path(__file__).parent
BANDS = ("Low", "Mid", "High")
GLOBALS = ("Mix", "HPF", "MasterGain", "LowXOver", "HighXOver", "Nuke", "Niveau", "Link", "Bypass", "InLevel",
           "OutLevel")
BAND_CONTROLS = ("Meter", "In", "Solo", "MidSide", "Gain", "Ratio", "Threshold", "Attack", "Recovery")
NAMES = [band + control for band in BANDS for control in BAND_CONTROLS] + list(GLOBALS)

# Gain dB, ratio row, threshold dB, attack row, recovery row of each band; then mix, HPF Hz, master dB, crossovers Hz,
# nuke, link, in and out level dB.
PROGRAMS = [
    ((2, 2, -4, 2, 4), (2, 2, -4, 2, 4), (2, 2, -4, 2, 4), 1.0, 20, 0, 200, 5000, 0, 0, 0, 0),
    ((13, 2, -12, 2, 1), (3, 2, -14, 3, 0), (6, 2, -10, 3, 1), 1.0, 20, -2, 316, 4386, 0, 0, 0, 0),
    ((4, 2, -8, 2, 0), (0, 2, 10, 2, 0), (15, 2, -20, 2, 0), 1.0, 36, 0, 315, 712, 0, 0, 0, 0),
    ((12, 2, -16, 0, 0), (3, 2, -14, 1, 0), (1, 2, -18, 1, 0), 0.8, 20, 0, 247, 2229, 0, 0, 0, 0),
    ((10, 2, -14, 2, 0), (6, 2, -14, 2, 0), (6, 2, -14, 2, 0), 0.7, 46, -6, 425, 4766, 1, 0, 10, -1.4),
    ((0, 2, -14, 2, 0), (0, 2, -14, 2, 0), (0, 2, -14, 2, 0), 0.8, 46, 0, 425, 4766, 1, 0, 0, 0),
    ((-1, 2, -14, 2, 0), (-1, 2, -14, 2, 0), (-1, 2, -14, 2, 0), 1.0, 46, 2, 449, 4766, 0, 1, 0, 0),
    ((4, 1, -10, 1, 1), (3, 1, -8, 1, 1), (8, 2, -16, 0, 1), 1.0, 20, 0, 424, 4032, 0, 0, 0, 0),
    ((14, 2, -18, 2, 0), (5, 2, -16, 2, 0), (9, 2, -16, 2, 0), 1.0, 20, -4, 166, 2640, 0, 0, 0, 0.4),
    ((4, 1, -10, 2, 4), (2, 1, -2, 2, 4), (3, 1, -2, 2, 4), 1.0, 33, 0, 207, 3976, 0, 0, 0, 0),
    ((3, 1, -6, 2, 4), (1, 1, 2, 2, 4), (3, 1, 0, 2, 4), 0.9, 40, 0, 277, 5373, 0, 0, 0, 0),
    ((5, 1, -10, 2, 4), (3, 1, -2, 2, 4), (8, 1, -2, 2, 4), 1.0, 33, 0, 207, 7044, 0, 0, 0, -0.2),
    ((5, 2, -18, 2, 0), (1, 2, -20, 2, 0), (4, 2, -18, 2, 0), 1.0, 20, 0, 169, 3375, 0, 0, 2.2, -0.3),
    ((6, 2, -14, 1, 0), (7, 2, -14, 1, 0), (9, 2, -14, 1, 0), 1.0, 47, 0, 346, 4458, 0, 0, 0, 0),
    ((3, 2, -14, 1, 0), (5, 2, -14, 2, 0), (8, 2, -14, 2, 0), 0.8, 47, 0, 346, 4458, 1, 0, 0, 0),
]


def single(x):
    """The nearest 32-bit float."""
    return struct.unpack("<f", struct.pack("<f", x))[0]


def digits(x):
    return f"{Decimal(x):.20f}"


def text_of(values, options=(22, 1, 1.0), extra=""):
    attributes = ['Version="1.0.0"'] + [f'{n}="{digits(single(v))}"' for n, v in zip(NAMES, values)]
    if options:
        calibration, factor, zoom = options
        attributes += [f'Calibration="{digits(calibration)}"', f'Oversampling="{factor}"',
                       f'UIZoom="{digits(single(zoom))}"']
    return "<CQ7SETTINGS " + " ".join(attributes) + extra + "/>"


def program(index):
    low, mid, high, mix, hpf, master, low_x, high_x, nuke, link, in_level, out_level = PROGRAMS[index]
    values = []
    for band, (gain, ratio, threshold, attack, recovery) in zip(BANDS, (low, mid, high)):
        is_in = 0 if (index, band) == (2, "Mid") else 1
        side = 1 if (index, band) == (11, "High") else 0.5
        values += [0.5, is_in, 0, side, (gain + 1) / 21, ratio / 4, (threshold + 20) / 30, attack / 3, recovery / 4]
    return values + [mix, math.log10(hpf / 20) / 1.3979400087, (master + 10) / 30, math.log10(low_x / 50) / 2,
                     math.log10(high_x / 200) / 1.778151250383644, nuke, 1, link, 0, (in_level + 10) / 20,
                     (out_level + 10) / 20]


def block_of(text):
    return struct.pack("<II", 0x21324356, len(text)) + text.encode() + b"\0"


def main():
    def write(name, text):
        (HERE / f"v1.0.0-{name}.xml").write_text(text, encoding="utf-8", newline="")

    for index in range(len(PROGRAMS)):
        write(f"program-{index:02d}", text_of(program(index)))

    write("lowest", text_of([0] * 38, (16, 2, 0.7)))
    write("highest", text_of([1] * 38, (24, 16, 0.9)))
    write("no-options", text_of(program(7), None))
    write("preset", text_of(program(9), (16, 8, 0.8), ' IsPreset="1"'))
    (HERE / "v1.0.0-default.bin").write_bytes(block_of(text_of(program(0))))


if __name__ == "__main__":
    main()
