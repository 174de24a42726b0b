#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the seven-segment face to what the displays need of it, and to its script.

The file is read here by its bytes alone: the tables, and the few operators that straight outlines use.
"""

import datetime
import math
import os
import pathlib
import struct
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools/font/make_segment7.py"
FONT = ROOT / "source/assets/fonts/Segment7.otf"

# FontForge's module lives with the system's Python. Other versions may pack the same outlines in another way.
SYSTEM_PYTHON = "/usr/bin/python3"
MADE_BY_VERSION = "20230101"

# Written out once more, apart from the script's own list. Segments: a on top, then clockwise, g in the middle.
LIT = {"0": "abcdef", "1": "bc", "2": "abdeg", "3": "abcdg", "4": "bcfg", "5": "acdfg", "6": "acdefg", "7": "abc",
       "8": "abcdefg", "9": "abcdfg", "-": "g", "\u2212": "g"}


# ---------------------------------------------------------------------------------------------
# Reading the file


def read_tables(data):
    """Tag to (checksum, offset, length), in the order of the directory."""
    count = struct.unpack_from(">H", data, 4)[0]
    entries = (struct.unpack_from(">4sIII", data, 12 + 16 * k) for k in range(count))
    return {tag.decode("ascii"): rest for tag, *rest in entries}


def checksum(data):
    padded = data + b"\0" * (-len(data) % 4)
    return sum(struct.unpack(f">{len(padded) // 4}I", padded)) & 0xffffffff


def read_names(table):
    """(platform, name number) to text."""
    _, count, start = struct.unpack_from(">HHH", table)
    names = {}
    for k in range(count):
        platform, _, _, number, length, offset = struct.unpack_from(">6H", table, 6 + 12 * k)
        text = table[start + offset:start + offset + length]
        names[platform, number] = text.decode("mac_roman" if platform == 1 else "utf_16_be")
    return names


def read_windows_cmap(table):
    """Character to glyph number, of the Unicode map that every system reads: platform 3, encoding 1, format 4."""
    for k in range(struct.unpack_from(">H", table, 2)[0]):
        platform, encoding, start = struct.unpack_from(">HHI", table, 4 + 8 * k)
        if (platform, encoding) == (3, 1):
            break
    else:
        raise ValueError("no Unicode map")
    if struct.unpack_from(">H", table, start)[0] != 4:
        raise ValueError("not format 4")

    count = struct.unpack_from(">H", table, start + 6)[0] // 2
    ends, firsts, deltas, ranges = (start + 14 + pad + 2 * count * part for part, pad in enumerate((0, 2, 2, 2)))
    glyphs = {}
    for k in range(count):
        end, first, delta, offset = (struct.unpack_from(">H", table, at + 2 * k)[0] for at in (ends, firsts, deltas, ranges))
        for code in range(first, min(end, 0xfffe) + 1):
            glyph = code
            if offset != 0:
                glyph = struct.unpack_from(">H", table, ranges + 2 * k + offset + 2 * (code - first))[0]
            if offset == 0 or glyph != 0:
                glyphs[chr(code)] = (glyph + delta) & 0xffff
    return glyphs


def read_index(data, at):
    """The items of a CFF INDEX, and where it ends."""
    count = struct.unpack_from(">H", data, at)[0]
    if count == 0:
        return [], at + 2
    size = data[at + 2]
    offsets = [int.from_bytes(data[at + 3 + k * size:at + 3 + (k + 1) * size], "big") for k in range(count + 1)]
    base = at + 2 + (count + 1) * size
    return [data[base + a:base + b] for a, b in zip(offsets, offsets[1:])], base + offsets[-1]


def tokens(data):
    """Numbers and operators, as (is operator, value), of a dictionary or an outline without hints."""
    at = 0
    while at < len(data):
        byte = data[at]
        at += 1
        if 32 <= byte <= 246:
            yield False, byte - 139
        elif 247 <= byte <= 254:
            sign, base = (1, byte - 247) if byte <= 250 else (-1, byte - 251)
            yield False, sign * (base * 256 + data[at] + 108)
            at += 1
        elif byte == 28:
            yield False, struct.unpack_from(">h", data, at)[0]
            at += 2
        elif byte == 29:
            yield False, struct.unpack_from(">i", data, at)[0]
            at += 4
        elif byte == 30:                                        # a decimal: its digits end with the half byte f
            while data[at] & 0x0f != 0x0f:
                at += 1
            at += 1
            yield False, math.nan
        elif byte == 12:
            yield True, (12, data[at])
            at += 1
        else:
            yield True, byte


def read_dictionary(data):
    entries, operands = {}, []
    for is_operator, value in tokens(data):
        if is_operator:
            entries[value] = operands
            operands = []
        else:
            operands.append(value)
    return entries


class Outline:
    """Runs the outline of one glyph: lines only. Anything else is an error, as are hints."""

    def __init__(self, code, subroutines):
        self.subroutines = subroutines
        self.bias = 107 if len(subroutines) < 1240 else 1131
        self.x = self.y = 0
        self.stack, self.contours = [], []
        self.ended = False
        self.run(code)
        if not self.ended or self.stack:
            raise ValueError("the outline does not end, or carries a width of its own")

    def move(self, dx, dy):
        self.x, self.y = self.x + dx, self.y + dy
        return self.x, self.y

    def run(self, code):
        for is_operator, value in tokens(code):
            if not is_operator:
                self.stack.append(value)
                continue
            if value == 10:
                self.run(self.subroutines[self.stack.pop() + self.bias])
                continue
            if value == 11:
                return
            operands, self.stack = self.stack, []
            if value in (21, 22, 4):
                dx, dy = {21: operands, 22: operands + [0], 4: [0] + operands}[value]
                self.contours.append([self.move(dx, dy)])
            elif value == 5:
                for k in range(0, len(operands), 2):
                    self.contours[-1].append(self.move(operands[k], operands[k + 1]))
            elif value in (6, 7):
                for k, step in enumerate(operands):
                    across = (value == 6) == (k % 2 == 0)
                    self.contours[-1].append(self.move(step if across else 0, 0 if across else step))
            elif value == 14:
                self.ended = True
                self.stack = operands
            else:
                raise ValueError(f"operator {value}")


def read_outlines(table):
    """The contours of every glyph, by glyph number, each a tuple of corners."""
    at = table[2]
    _, at = read_index(table, at)
    tops, _ = read_index(table, at)
    top = read_dictionary(tops[0])
    codes, _ = read_index(table, top[17][0])
    size, start = top[18]
    private = read_dictionary(table[start:start + size])
    subroutines = read_index(table, start + private[19][0])[0] if 19 in private else []
    return [[tuple(contour) for contour in Outline(code, subroutines).contours] for code in codes]


# ---------------------------------------------------------------------------------------------
# Geometry


def edges(polygon):
    return list(zip(polygon, polygon[1:] + polygon[:1]))


def area(polygon):
    return sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in edges(polygon)) / 2.0


def centre(polygon):
    return tuple(sum(corner[k] for corner in polygon) / len(polygon) for k in (0, 1))


def turns(polygon):
    """Twice the area of each corner's triangle: all above 0 where the polygon is convex and counter-clockwise."""
    return [(x1 - x0) * (y2 - y1) - (x2 - x1) * (y1 - y0)
            for (x0, y0), (x1, y1), (x2, y2) in zip(polygon, polygon[1:] + polygon[:1], polygon[2:] + polygon[:2])]


def distance_apart(one, other):
    """The widest strip along an edge of either that separates two convex polygons; below 0 if they overlap."""
    widest = -math.inf
    for polygon, against in ((one, other), (other, one)):
        for (x0, y0), (x1, y1) in edges(polygon):
            length = math.hypot(x1 - x0, y1 - y0)
            widest = max(widest, min(((x - x0) * (y1 - y0) - (y - y0) * (x1 - x0)) / length for x, y in against))
    return widest


class Segment7(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.data = FONT.read_bytes()
        cls.tables = read_tables(cls.data)
        cls.glyphs = read_windows_cmap(cls.table("cmap"))
        cls.outlines = read_outlines(cls.table("CFF "))
        cls.ascent, descent = struct.unpack_from(">hh", cls.table("hhea"), 4)
        cls.descent = -descent

    @classmethod
    def table(cls, tag):
        _, offset, length = cls.tables[tag]
        return cls.data[offset:offset + length]

    def contours(self, character):
        return self.outlines[self.glyphs[character]]

    def advances(self):
        count = struct.unpack_from(">H", self.table("hhea"), 34)[0]
        listed = [struct.unpack_from(">H", self.table("hmtx"), 4 * k)[0] for k in range(count)]
        return listed + listed[-1:] * (len(self.outlines) - count)

    def segments(self):
        """The contours of the 8 by name, told by where they lie."""
        found = {}
        middle_x = sum(centre(contour)[0] for contour in self.contours("8")) / 7.0
        middle_y = (self.ascent - self.descent) / 2.0
        for contour in self.contours("8"):
            (left, right), (bottom, top) = ((min(v), max(v)) for v in zip(*contour))
            x, y = centre(contour)
            if right - left > top - bottom:
                name = "g" if bottom < middle_y < top else "a" if y > middle_y else "d"
            else:
                name = ("b" if x > middle_x else "f") if y > middle_y else ("c" if x > middle_x else "e")
            found[name] = contour
        return found


class File(Segment7):
    def test_is_opentype_with_postscript_outlines(self):
        self.assertEqual(self.data[:4], b"OTTO")
        self.assertEqual(set(self.tables), {"CFF ", "OS/2", "cmap", "head", "hhea", "hmtx", "maxp", "name", "post"})

    def test_holds_its_tables_in_order_and_without_overlap(self):
        self.assertEqual(list(self.tables), sorted(self.tables))
        end = 12 + 16 * len(self.tables)
        for _, offset, length in sorted(self.tables.values(), key=lambda entry: entry[1]):
            self.assertEqual(offset % 4, 0)
            self.assertGreaterEqual(offset, end)
            end = offset + length
        self.assertLessEqual(end, len(self.data))

    def test_has_valid_checksums(self):
        head = self.tables["head"][1]
        without = self.data[:head + 8] + bytes(4) + self.data[head + 12:]
        for tag, (expected, offset, length) in self.tables.items():
            self.assertEqual(checksum(without[offset:offset + length]), expected, tag)
        adjustment = struct.unpack_from(">I", self.data, head + 8)[0]
        self.assertEqual((checksum(without) + adjustment) & 0xffffffff, 0xb1b0afba)

    def test_is_named(self):
        names = read_names(self.table("name"))
        for platform in (1, 3):
            self.assertEqual(names[platform, 0], "Copyright Corvane, GPL-3.0-or-later")
            self.assertEqual(names[platform, 1], "Segment7")
            self.assertEqual(names[platform, 2], "Regular")
            self.assertEqual(names[platform, 6], "Segment7")
        self.assertEqual({number for _, number in names}, set(range(7)))

    def test_carries_a_date_that_no_run_changes(self):
        since_1904 = datetime.datetime(2025, 1, 1) - datetime.datetime(1904, 1, 1)
        self.assertEqual(struct.unpack_from(">qq", self.table("head"), 20), (since_1904.total_seconds(),) * 2)


class Cells(Segment7):
    def test_knows_digits_point_minus_and_blank_and_no_more(self):
        self.assertEqual(set(self.glyphs), set("0123456789.- \u2212"))
        self.assertEqual(self.glyphs["-"], self.glyphs["\u2212"])
        self.assertEqual(len(set(self.glyphs.values())), 13)
        self.assertEqual(len(self.outlines), 14)
        self.assertNotIn(0, self.glyphs.values())

    def test_gives_every_glyph_the_same_advance(self):
        self.assertEqual(len(self.advances()), len(self.outlines))
        self.assertEqual(len(set(self.advances())), 1)

    def test_says_that_its_pitch_is_fixed(self):
        self.assertNotEqual(struct.unpack_from(">I", self.table("post"), 12)[0], 0)

    def test_fits_four_cells_into_the_narrower_display(self):
        # At base size a text is 30 px high, and 58 px of label less 5 px of border at either side are left for it.
        self.assertLessEqual(4 * self.advances()[0] / (self.ascent + self.descent) * 30.0, 48.0)

    def test_has_an_em_of_ascent_and_descent(self):
        em = struct.unpack_from(">H", self.table("head"), 18)[0]
        self.assertEqual(self.ascent + self.descent, em)
        ascent, descent, gap, win_ascent, win_descent = struct.unpack_from(">hhhHH", self.table("OS/2"), 68)
        self.assertEqual((ascent, -descent, gap), (self.ascent, self.descent, 0))
        self.assertEqual((win_ascent, win_descent), (self.ascent, self.descent))

    def test_centres_a_digit_between_ascent_and_descent(self):
        heights = [y for contour in self.contours("8") for _, y in contour]
        self.assertEqual(min(heights) + self.descent, self.ascent - max(heights))
        self.assertAlmostEqual((max(heights) - min(heights)) / (self.ascent + self.descent), 0.72, delta=0.02)

    def test_keeps_the_ink_in_its_cell(self):
        for contours in self.outlines:
            for x, _ in (corner for contour in contours for corner in contour):
                self.assertTrue(0 <= x <= self.advances()[0])

    def test_leaves_blank_and_unknown_characters_dark(self):
        self.assertEqual(self.contours(" "), [])
        self.assertEqual(self.outlines[0], [])


class Segments(Segment7):
    def test_the_8_has_seven_hexagons(self):
        self.assertEqual(set(self.segments()), set("abcdefg"))
        self.assertEqual([len(contour) for contour in self.contours("8")], [6] * 7)

    def test_each_digit_lights_its_segments_of_the_8(self):
        segments = self.segments()
        for character, lit in LIT.items():
            self.assertEqual(sorted(self.contours(character)), sorted(segments[name] for name in lit), character)

    def test_no_segment_touches_another(self):
        contours = list(self.segments().values())
        for k, one in enumerate(contours):
            for other in contours[:k]:
                self.assertGreater(distance_apart(one, other), 6.0)      # a fifth of a pixel at 30 px

    def test_neighbours_are_parted_by_a_hairline(self):
        segments = self.segments()
        for one, other in ("ab", "bc", "cd", "de", "ef", "fa", "bg", "cg", "eg", "fg"):
            self.assertLess(distance_apart(segments[one], segments[other]), 25.0, one + other)

    def test_outlines_are_convex_and_run_one_way(self):
        for contours in self.outlines:
            for contour in contours:
                self.assertGreater(area(contour), 0.0)
                self.assertGreater(min(turns(contour)), 0)

    def test_leans_to_the_right_by_about_seven_degrees(self):
        segments = self.segments()
        (top_x, top_y), (bottom_x, bottom_y) = centre(segments["a"]), centre(segments["d"])
        self.assertAlmostEqual(math.degrees(math.atan((top_x - bottom_x) / (top_y - bottom_y))), 7.0, delta=1.0)

    def test_the_point_stands_alone_behind_the_foot_of_the_digit_before(self):
        contours = self.contours(".")
        self.assertEqual(len(contours), 1)
        self.assertNotIn(contours[0], self.contours("8"))
        across, up = zip(*contours[0])
        self.assertEqual(min(up), 0)
        self.assertLess(max(across), self.advances()[0] / 2)


def made_here():
    asked = subprocess.run([SYSTEM_PYTHON, "-c", "import fontforge; print(fontforge.version())"],
                           capture_output=True, text=True, check=False) if os.path.exists(SYSTEM_PYTHON) else None
    return asked is not None and asked.returncode == 0 and asked.stdout.strip() == MADE_BY_VERSION


@unittest.skipUnless(made_here(), f"FontForge {MADE_BY_VERSION} (python3-fontforge) is not installed")
class Script(unittest.TestCase):
    def run_script(self, *arguments, **environment):
        return subprocess.run([SYSTEM_PYTHON, str(SCRIPT), *map(str, arguments)], capture_output=True, text=True,
                              check=False, env={**os.environ, **environment})

    def test_makes_the_font_that_is_in_the_tree(self):
        self.assertEqual(self.run_script("--check", FONT).returncode, 0)

    def test_makes_the_same_anywhere(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "other name.otf"
            result = self.run_script(made, HOME=folder, TZ="Asia/Tokyo", LC_ALL="C", SOURCE_DATE_EPOCH="1",
                                     USER="someone", LOGNAME="someone")
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(made.read_bytes(), FONT.read_bytes())

    def test_check_refuses_a_changed_font(self):
        with tempfile.TemporaryDirectory() as folder:
            changed = pathlib.Path(folder) / "changed.otf"
            data = bytearray(FONT.read_bytes())
            data[-1] ^= 1
            changed.write_bytes(data)
            result = self.run_script("--check", changed)
            self.assertEqual(result.returncode, 1)
            self.assertIn("differs", result.stderr)

    def test_check_refuses_what_is_not_there(self):
        result = self.run_script("--check", ROOT / "tools/font/none.otf")
        self.assertEqual(result.returncode, 1)
        self.assertNotIn("Traceback", result.stderr)


if __name__ == "__main__":
    unittest.main()
