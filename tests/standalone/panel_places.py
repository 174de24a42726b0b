# SPDX-License-Identifier: GPL-3.0-or-later
"""Where a user finds each control of the window, typed anew and not taken from the editor's own table."""

BAR = 24  # px: the strips above and below the panel, at every zoom
BANDS = ("Low", "Mid", "High")

# Width of the editor: its height, at 70, 80, 90 and 100 %.
HEIGHTS = {945: 506, 1080: 578, 1215: 650, 1350: 723}

# Shares of the panel's width and height: x by band, y, width, height.
_BAND = {
    "Threshold": ((0.24, 0.5733, 0.9067), 0.3615, 0.0533, 0.1067),
    "Gain": ((0.1067, 0.44, 0.7733), 0.3615, 0.0533, 0.1067),
    "Ratio": ((0.2222, 0.5556, 0.8889), 0.1289, 0.0889, 0.1778),
    "Attack": ((0.0889, 0.4222, 0.7556), 0.5304, 0.0889, 0.1778),
    "Recovery": ((0.2222, 0.5556, 0.8889), 0.5304, 0.0889, 0.1778),
    "Meter": ((0.0148, 0.3481, 0.6815), 0.5793, 0.04, 0.08),
    "In": ((0.1148, 0.4474, 0.7807), 0.1111, 0.063, 0.08),
    "Solo": ((0.1148, 0.4474, 0.7807), 0.1718, 0.063, 0.08),
    "MidSide": ((0.1148, 0.4474, 0.7807), 0.2326, 0.063, 0.08),
    "In lamp": ((0.1007, 0.4341, 0.7674), 0.1304, 0.0185, 0.037),
    "Solo lamp": ((0.1007, 0.4341, 0.7674), 0.1911, 0.0185, 0.037),
    "M lamp": ((0.1007, 0.4341, 0.7667), 0.2518, 0.0185, 0.037),
    "S lamp": ((0.1718, 0.5052, 0.8378), 0.2533, 0.0185, 0.037),
    "M label": ((0.0881, 0.4237, 0.7563), 0.2548, 0.0185, 0.0356),
    "S label": ((0.1822, 0.5163, 0.8482), 0.2548, 0.0185, 0.0356),
}
_GLOBAL = {
    "HPF": (0.1985, 0.8356, 0.0533, 0.1067),
    "Mix": (0.4119, 0.8356, 0.0533, 0.1067),
    "MasterGain": (0.5356, 0.8356, 0.0533, 0.1067),
    "LowXOver": (0.3133, 0.837, 0.04, 0.08),
    "HighXOver": (0.6467, 0.837, 0.04, 0.08),
    "Bypass": (0.9215, 0.843, 0.0518, 0.117),
    "Bypass lamp": (0.9222, 0.9333, 0.0185, 0.037),
    "Nuke": (0.757, 0.8, 0.063, 0.08),
    "Niveau": (0.757, 0.8533, 0.063, 0.08),
    "Link": (0.757, 0.9067, 0.063, 0.08),
    "Nuke lamp": (0.7422, 0.8222, 0.0185, 0.037),
    "Niveau lamp": (0.7422, 0.8756, 0.0185, 0.037),
    "Link lamp": (0.7422, 0.9289, 0.0185, 0.037),
}
# The same, but x is the middle.
_READOUTS = {
    "MasterGain readout": (0.5622, 0.7822, 0.037, 0.0356),
    "Mix readout": (0.4393, 0.7822, 0.037, 0.0356),
    "HPF readout": (0.2252, 0.7822, 0.037, 0.0356),
    "LowXOver digits": (0.3333, 0.9363, 0.0444, 0.0444),
    "HighXOver digits": (0.6659, 0.9363, 0.043, 0.0444),
}
SHARES = {band + name: (x[i], y, w, h) for name, (x, y, w, h) in _BAND.items() for i, band in enumerate(BANDS)}
SHARES["LowM label"] = (0.0881, 0.2548, 0.0222, 0.0356)
SHARES.update(_GLOBAL)

# Pixels of the strip above; a negative x counts from the right edge.
_TOOLBAR = {"Settings": (-24, 24), "A": (0, 24), "Copy": (24, 24), "B": (48, 24),
            "InLevel": (224, 28), "InLevel text": (252, 40), "OutLevel": (336, 28), "OutLevel text": (364, 40)}
_BOTTOM = {"Logo": (0, 114), "Links": (-24, 24)}

KNOBS_OF_BAND = ("Threshold", "Gain", "Ratio", "Attack", "Recovery", "Meter")

LAMP_COLOURS = {"green": (0x347600, 0x4bff00), "red": (0x761116, 0xff0000), "yellow": (0x766000, 0xffd400)}
_LAMPS = {"In lamp": "green", "Bypass lamp": "green", "Link lamp": "green", "Solo lamp": "red", "Nuke lamp": "red",
          "Niveau lamp": "yellow", "M lamp": "yellow", "S lamp": "yellow"}
LAMPS = {name: colour for name in SHARES for kind, colour in _LAMPS.items() if name.endswith(kind)}


def place(name, width, height):
    """x, y, width and height in pixels of an editor of that size."""
    for strip, top in ((_TOOLBAR, 0), (_BOTTOM, height - BAR)):
        if name in strip:
            x, w = strip[name]
            return (x if x >= 0 else width + x), top, w, BAR

    panel = height - 2 * BAR
    x, y, w, h = SHARES.get(name) or _READOUTS[name]
    left, top, w, h = (round(share * side) for share, side in ((x, width), (y, panel), (w, width), (h, panel)))
    if name in _READOUTS:
        left -= w // 2
    return left, top + BAR, w, h
