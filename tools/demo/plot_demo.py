#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws what the compressor did to a sound: both waveforms, and the gain reduction of each band.

    plot_demo.py --before in.wav --after out.wav --meters meters.csv --title TEXT --output plot.svg

The sound files are PCM of 16, 24 or 32 bit, or 32-bit float, of one sampling rate. The meters are a
table with the header

    frame,low_level,low_gain_reduction,mid_level,mid_gain_reduction,high_level,high_gain_reduction

and one row for each block: its first frame, and for each band a level and a gain reduction, which is
a linear factor, 1 for none. The picture brings its own dark panel, so it looks the same on a light
and on a dark page.
"""

import argparse
import array
import csv
import math
import pathlib
import struct
import sys
from xml.sax.saxutils import escape

# ---------------------------------------------------------------------------------------------
# Reading


class Sound:
    """One list of samples for each channel, full scale at 1."""

    def __init__(self, rate, channels):
        self.rate = rate
        self.channels = channels

    @property
    def num_frames(self):
        return len(self.channels[0])

    @property
    def seconds(self):
        return self.num_frames / self.rate

    def peak(self):
        return max((abs(x) for channel in self.channels for x in channel), default=0.0)

    def rms(self):
        count = sum(len(channel) for channel in self.channels)
        return math.sqrt(math.fsum(x * x for channel in self.channels for x in channel) / max(count, 1))


PCM, FLOAT, EXTENSIBLE = 0x0001, 0x0003, 0xFFFE


def native(typecode, data):
    """Little-endian bytes as numbers of this machine."""
    numbers = array.array(typecode)
    numbers.frombytes(data[:len(data) - len(data) % numbers.itemsize])
    if sys.byteorder == "big":
        numbers.byteswap()
    return numbers


def decode(kind, bits, data):
    """Bytes of interleaved samples as numbers, full scale at 1."""
    if (kind, bits) == (FLOAT, 32):
        samples = list(native("f", data))
        if not all(map(math.isfinite, samples)):
            raise ValueError("a sample is not a finite number")
        return samples
    if (kind, bits) == (PCM, 16):
        return [x / 2 ** 15 for x in native("h", data)]
    if (kind, bits) == (PCM, 24):
        data = data[:len(data) - len(data) % 3]
        wide = bytearray(len(data) // 3 * 4)        # three bytes become the upper three of four
        for k in range(3):
            wide[k + 1::4] = data[k::3]
        return [x / 2 ** 31 for x in native("i", bytes(wide))]
    if (kind, bits) == (PCM, 32):
        return [x / 2 ** 31 for x in native("i", data)]
    raise ValueError(f"format {kind:#06x} with {bits} bit is not one that is read here")


def read_wav(path):
    """Reads a RIFF file by hand: the wave module of Python knows neither float nor the long format."""
    content = pathlib.Path(path).read_bytes()
    if len(content) < 12 or content[0:4] != b"RIFF" or content[8:12] != b"WAVE":
        raise ValueError("not a WAV file")

    layout, place = None, 12
    while place + 8 <= len(content):
        name, size = content[place:place + 4], struct.unpack_from("<I", content, place + 4)[0]
        body = content[place + 8:place + 8 + size]  # a size beyond the end means: up to the end
        if name == b"fmt ":
            if len(body) < 16:
                raise ValueError("the format chunk is too short")
            kind, num_channels, rate, _, _, bits = struct.unpack_from("<HHIIHH", body)
            if kind == EXTENSIBLE:
                if len(body) < 26:
                    raise ValueError("the format chunk is too short")
                kind = struct.unpack_from("<H", body, 24)[0]     # the identifier begins with the short tag
            layout = kind, num_channels, rate, bits
        elif name == b"data":
            if layout is None:
                raise ValueError("samples come before their format")
            kind, num_channels, rate, bits = layout
            if num_channels == 0 or rate == 0:
                raise ValueError("no channels, or no rate")
            samples = decode(kind, bits, body)
            whole = len(samples) - len(samples) % num_channels
            return Sound(rate, [samples[c:whole:num_channels] for c in range(num_channels)])
        place += 8 + size + size % 2                # chunks start at even places
    raise ValueError("no samples in it")


BANDS = ("low", "mid", "high")


def read_meters(path):
    """Frames, and for each band the gain reductions in dB, 0 or below."""
    smallest = 1.0e-6                               # -120 dB stands for all that is less
    frames, reductions = [], {band: [] for band in BANDS}
    with open(path, newline="", encoding="utf-8") as file:
        reader = csv.DictReader(file)
        wanted = ["frame"] + [f"{band}_gain_reduction" for band in BANDS]
        missing = [name for name in wanted if name not in (reader.fieldnames or [])]
        if missing:
            raise ValueError("no column " + ", ".join(missing))
        for row in reader:
            try:
                frames.append(int(row["frame"]))
                for band in BANDS:
                    factor = float(row[f"{band}_gain_reduction"])
                    if not math.isfinite(factor):
                        raise ValueError
                    reductions[band].append(20.0 * math.log10(max(factor, smallest)))
            except (TypeError, ValueError):
                raise ValueError(f"line {reader.line_num} is not a row of numbers") from None
    if not frames:
        raise ValueError("no rows in it")
    return frames, reductions


# ---------------------------------------------------------------------------------------------
# The look

WIDTH, HEIGHT = 900, 580
LEFT, RIGHT = 66, 868
PLOT_WIDTH = RIGHT - LEFT
STRIP_HEIGHT = 96
BEFORE_TOP, AFTER_TOP = 114, 248
METER_TOP, METER_HEIGHT = 384, 144
LEGEND_WIDTH = 158

PANEL, EDGE, WELL, GRID, ZERO = "#14171c", "#2b3038", "#1a1e25", "#2a303a", "#454d5a"
TEXT, QUIET = "#e8ebf0", "#98a2b0"
BEFORE_COLOUR, AFTER_COLOUR = "#8a95a5", "#41d3b0"
BAND_COLOURS = {"low": "#5aa9ff", "mid": "#ffc857", "high": "#ff6f91"}

PEAK_COLUMN = 1.0                                   # width of one point of a peak envelope, in pixels
RMS_COLUMN = 2.0
METER_COLUMN = 1.5

STYLE = f"""
text {{ font-family: Inter, 'Segoe UI', 'Helvetica Neue', Helvetica, Arial, sans-serif; fill: {QUIET}; font-size: 12px }}
.title {{ fill: {TEXT}; font-size: 19px; font-weight: 600 }}
.name {{ fill: {TEXT}; font-size: 13px; font-weight: 600 }}
.number {{ font-variant-numeric: tabular-nums }}
.grid {{ stroke: {GRID}; stroke-width: 1 }}
.zero {{ stroke: {ZERO}; stroke-width: 1 }}
.band {{ fill: none; stroke-width: 2; stroke-linejoin: round; stroke-linecap: round }}
"""


def tidy(value):
    """One decimal is a tenth of a pixel; a trailing .0 is dropped, for the file's size."""
    text = f"{value:.1f}"
    return text[:-2] if text.endswith(".0") else text


def signed(value, decimals=1):
    """A number with a true minus sign."""
    text = f"{value:.{decimals}f}"
    return text.replace("-", "\u2212") if float(text) != 0.0 else text.lstrip("-")


def dbfs(linear):
    return f"{signed(20.0 * math.log10(linear))} dBFS" if linear > 0.0 else "\u2212\u221e dBFS"


def text(x, y, content, css="", anchor="start", **more):
    attributes = "".join(f' {name}="{value}"' for name, value in more.items())
    css = f' class="{css}"' if css else ""
    anchor = "" if anchor == "start" else f' text-anchor="{anchor}"'
    return f'<text x="{tidy(x)}" y="{tidy(y)}"{css}{anchor}{attributes}>{escape(content)}</text>'


def line(x1, y1, x2, y2, css):
    return f'<line x1="{tidy(x1)}" y1="{tidy(y1)}" x2="{tidy(x2)}" y2="{tidy(y2)}" class="{css}"/>'


def path(points, close=False):
    return "M" + "L".join(f"{tidy(x)} {tidy(y)}" for x, y in points) + ("Z" if close else "")


def round_step(span, at_most):
    """A step of 1, 2 or 5 times a power of ten that cuts span into at most so many parts."""
    power = 10.0 ** math.floor(math.log10(span / at_most))
    for factor in (1.0, 2.0, 5.0, 10.0):
        if span / (factor * power) <= at_most + 1.0e-9:
            return factor * power
    return 10.0 * power


def decibel_step(depth):
    """Musicians count in threes and sixes."""
    for step in (0.5, 1.0, 2.0, 3.0, 6.0, 12.0, 24.0):
        if depth / step <= 5.0:
            return step
    return 36.0


# ---------------------------------------------------------------------------------------------
# The picture


def columns(num_frames, total_frames, width):
    """Splits the frames of a sound into columns so many pixels wide: (x of the middle, from, to)."""
    count = max(1, round(PLOT_WIDTH * num_frames / total_frames / width))
    for k in range(count):
        begin, end = num_frames * k // count, num_frames * (k + 1) // count
        if end > begin:
            yield LEFT + PLOT_WIDTH * (begin + end) / 2.0 / total_frames, begin, end


def waveform(sound, total_frames, top, scale, colour):
    """The range of the peaks, pale, and inside it the range of the root mean square, full."""
    middle = top + STRIP_HEIGHT / 2.0
    factor = STRIP_HEIGHT / 2.0 / scale

    upper, lower = [], []
    for x, begin, end in columns(sound.num_frames, total_frames, PEAK_COLUMN):
        upper.append((x, middle - factor * max(max(channel[begin:end]) for channel in sound.channels)))
        lower.append((x, middle - factor * min(min(channel[begin:end]) for channel in sound.channels)))
    peaks = path(upper + lower[::-1], close=True)

    upper, lower = [], []
    for x, begin, end in columns(sound.num_frames, total_frames, RMS_COLUMN):
        power = sum(sample * sample for channel in sound.channels for sample in channel[begin:end])
        rms = math.sqrt(power / ((end - begin) * len(sound.channels)))
        upper.append((x, middle - factor * rms))
        lower.append((x, middle + factor * rms))
    body = path(upper + lower[::-1], close=True)

    return [f'<path d="{peaks}" fill="{colour}" fill-opacity="0.45"/>', f'<path d="{body}" fill="{colour}"/>']


def strip(sound, name, total_frames, top, scale, colour, ticks):
    """One waveform in its well, with its name above and its figures at the right."""
    middle = top + STRIP_HEIGHT / 2.0
    out = [f'<rect x="{LEFT}" y="{top}" width="{PLOT_WIDTH}" height="{STRIP_HEIGHT}" rx="3" fill="{WELL}"/>']
    out += [line(x, top, x, top + STRIP_HEIGHT, "grid") for x, _ in ticks]
    out.append(line(LEFT, middle, RIGHT, middle, "zero"))
    out += waveform(sound, total_frames, top, scale, colour)
    out.append(f'<rect x="{LEFT}" y="{top - 20}" width="10" height="10" rx="2" fill="{colour}"/>')
    out.append(text(LEFT + 17, top - 11, name, "name"))
    figures = f"peak {dbfs(sound.peak())}   RMS {dbfs(sound.rms())}"
    out.append(text(RIGHT, top - 11, figures.replace("   ", "\u2003"), "number", "end"))
    last = top - 12.0
    for decibels in (0, -6, -12, -18, -24):         # those that fit; the middle is no level at all
        y = middle - STRIP_HEIGHT / 2.0 * 10.0 ** (decibels / 20.0) / scale
        if y >= top and y - last >= 13.0 and middle - y >= 13.0:
            out.append(text(LEFT - 9, y + 4, signed(decibels, 0), "number", "end"))
            last = y
    out.append(text(LEFT - 9, middle + 4, "\u2212\u221e", "number", "end"))
    return out


def meter_lines(frames, reductions, total_frames, y_of):
    """One line for each band; rows that share a column are averaged."""
    last_block = frames[-1] - frames[-2] if len(frames) > 1 else 0
    end = LEFT + PLOT_WIDTH * min(frames[-1] + last_block, total_frames) / total_frames
    out = []
    for band in BANDS:
        sums = {}
        for frame, value in zip(frames, reductions[band]):
            if 0 <= frame <= total_frames:
                column = int(PLOT_WIDTH * frame / total_frames / METER_COLUMN)
                x, total, count = sums.get(column, (0.0, 0.0, 0))
                sums[column] = x + PLOT_WIDTH * frame / total_frames, total + value, count + 1
        points = [(LEFT + x / count, y_of(total / count)) for _, (x, total, count) in sorted(sums.items())]
        if points:
            points.append((max(points[-1][0], end), points[-1][1]))     # the last block lasts, too
            out.append(f'<path d="{path(points)}" class="band" stroke="{BAND_COLOURS[band]}"/>')
    return out


def meters(frames, reductions, total_frames, ticks):
    """The gain reductions: 0 dB at the top, each band a line that hangs from it."""
    deepest = min(min(values) for values in reductions.values())
    highest = max(0.0, max(max(values) for values in reductions.values()))
    step = decibel_step(max(-deepest, 1.0))
    floor = -step * math.ceil(max(-deepest * 1.04, 1.0) / step)
    headroom = max(highest, -floor * 0.05)          # keeps the line of a band at rest off the edge

    def y_of(decibels):
        return METER_TOP + METER_HEIGHT * (headroom - decibels) / (headroom - floor)

    bottom = METER_TOP + METER_HEIGHT
    out = [f'<rect x="{LEFT}" y="{METER_TOP}" width="{PLOT_WIDTH}" height="{METER_HEIGHT}" rx="3" fill="{WELL}"/>']
    out += [line(x, METER_TOP, x, bottom, "grid") for x, _ in ticks]
    for k in range(round(-floor / step) + 1):
        value = -k * step
        out.append(line(LEFT, y_of(value), RIGHT, y_of(value), "grid" if k else "zero"))
        out.append(text(LEFT - 9, y_of(value) + 4, signed(value, 0 if step >= 1.0 else 1), "number", "end"))
    out += meter_lines(frames, reductions, total_frames, y_of)

    out.append(f'<text x="{LEFT}" y="{METER_TOP - 12}"><tspan class="name">Gain reduction</tspan>'
               '<tspan dx="7">dB</tspan></text>')
    x = RIGHT - len(BANDS) * LEGEND_WIDTH + 16
    for band in BANDS:
        most = max(0.0, -min(reductions[band]))
        out.append(f'<line x1="{x}" y1="{METER_TOP - 16}" x2="{x + 18}" y2="{METER_TOP - 16}" class="band" '
                   f'stroke="{BAND_COLOURS[band]}"/>')
        out.append(f'<text x="{x + 26}" y="{METER_TOP - 12}"><tspan class="name">{band.capitalize()}</tspan>'
                   f'<tspan dx="7" class="number">max {most:.1f} dB</tspan></text>')
        x += LEGEND_WIDTH
    return out


def draw(before, after, frames, reductions, title):
    """The whole picture as SVG text."""
    if before.rate != after.rate:
        raise ValueError(f"the rates differ: {before.rate} and {after.rate} Hz")
    total_frames = max(before.num_frames, after.num_frames)
    if total_frames == 0:
        raise ValueError("no samples to draw")
    seconds = total_frames / before.rate
    scale = 1.06 * max(before.peak(), after.peak(), 1.0e-6)     # one scale for both, a little air above

    tick_step = round_step(seconds, 10)
    decimals = max(0, -math.floor(math.log10(tick_step) + 1.0e-9))
    ticks = [(LEFT + PLOT_WIDTH * k * tick_step / seconds, f"{k * tick_step:.{decimals}f}")
             for k in range(int(seconds / tick_step + 1.0e-9) + 1)]

    out = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" '
        f'height="{HEIGHT}" role="img" aria-labelledby="title summary">',
        f'<title id="title">{escape(title)}</title>',
        '<desc id="summary">Waveform before and after, and the gain reduction of the low, middle and high '
        'band over time.</desc>',
        f"<style>{STYLE}</style>",
        f'<rect x="0.5" y="0.5" width="{WIDTH - 1}" height="{HEIGHT - 1}" rx="10" fill="{PANEL}" stroke="{EDGE}"/>',
        text(LEFT, 46, title, "title"),
        text(LEFT, 67, f"{seconds:.1f} s at {before.rate / 1000:g} kHz; peaks pale, RMS solid"),
    ]
    out += strip(before, "Before", total_frames, BEFORE_TOP, scale, BEFORE_COLOUR, ticks)
    out += strip(after, "After", total_frames, AFTER_TOP, scale, AFTER_COLOUR, ticks)
    out += meters(frames, reductions, total_frames, ticks)

    axis = METER_TOP + METER_HEIGHT + 19
    out += [text(x, axis, label, "number", "middle") for x, label in ticks if x < RIGHT - 12]
    out.append(text(RIGHT, axis, "s", "", "end"))
    out.append("</svg>")
    return "\n".join(out) + "\n"


def main():
    parser = argparse.ArgumentParser(description="Draws two waveforms and three gain reductions as SVG.")
    parser.add_argument("--before", required=True, help="sound before the compressor, WAV")
    parser.add_argument("--after", required=True, help="sound after the compressor, WAV")
    parser.add_argument("--meters", required=True, help="gain reductions, one row for each block, CSV")
    parser.add_argument("--title", required=True)
    parser.add_argument("--output", required=True, type=pathlib.Path, help="picture to write, SVG")
    arguments = parser.parse_args()

    source = ""
    try:
        source = arguments.before
        before = read_wav(source)
        source = arguments.after
        after = read_wav(source)
        source = arguments.meters
        frames, reductions = read_meters(source)
        source = arguments.output
        arguments.output.write_text(draw(before, after, frames, reductions, arguments.title), encoding="utf-8")
    except (OSError, ValueError) as error:
        print(f"{source}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
