# SPDX-License-Identifier: GPL-3.0-or-later
"""Where things stand on the front, in base pixels: the layout file's rectangles, and what only drawings use."""
import json
import pathlib

BANDS = (("Low", "LOW", 0), ("Mid", "MID", 450), ("High", "HIGH", 900))
STRIP_WIDTH = 450
STRIP_TOP, STRIP_BOTTOM = 3, 508
MASTER_TOP, MASTER_BOTTOM = 513, 672
SEAM = 3  # half the width of the gap between two plates

HEADER_Y = 33  # middle of the bands' names

# Engraved rules between the groups of the master plate.
RULES = (236, 372, 528, 822, 978, 1120, 1214)
RULE_TOP, RULE_BOTTOM = 531, 655

SCREW = 15.5  # of a plate's screws, from its corner in both directions
BADGE = (22, 546, 218, 639)
GRILLE = (1137, 546, 1197, 639)
SWITCH_X = 1279


class Layout:
    def __init__(self, path):
        data = json.loads(pathlib.Path(path).read_text())
        self.width, self.height = data["panel"]["width"], data["panel"]["height"]
        self.knobs = data["knobs"]
        self.rectangles = {r["name"]: (r["x"], r["y"], r["w"], r["h"]) for r in data["rectangles"]}
        self.meter = data["meter"]

    def ending(self, end):
        """Rectangles of the controls whose names end so, from left to right."""
        return sorted(r for name, r in self.rectangles.items() if name.endswith(end))
