#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the built LV2 bundle against what hosts need to find it, to load it and to show a panel of their own.

    check_lv2_bundle.py BUNDLE

The table of parameters below is written by hand: the bundle's is made from the code, so a slip there shows here.
"""
import collections
import math
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile

URI = "http://corvane.example/plugins/corvane-q7"
LV2 = "http://lv2plug.in/ns/lv2core#"
RDF = "http://www.w3.org/1999/02/22-rdf-syntax-ns#"
RDFS = "http://www.w3.org/2000/01/rdf-schema#"
XSD = "http://www.w3.org/2001/XMLSchema#"
DOAP = "http://usefulinc.com/ns/doap#"
UNITS = "http://lv2plug.in/ns/extensions/units#"
ATOM = "http://lv2plug.in/ns/ext/atom#"
PATCH = "http://lv2plug.in/ns/ext/patch#"
STATE = "http://lv2plug.in/ns/ext/state#"
PRESETS = "http://lv2plug.in/ns/ext/presets#"
UI = "http://lv2plug.in/ns/extensions/ui#"
LICENCE = "https://spdx.org/licenses/GPL-3.0-or-later.html"

PROGRAMS = ["Default", "808 Clap Fat", "808 Kick Knock", "Bass Tight Big Low End", "Drum Bus Hammer", "Drum Bus Smash",
            "Drum Bus Smooth", "Female Vocals", "Kick Tight Beta", "Mixbus Smooth", "Mixbus Start Here",
            "Mixbus Wide and Bright", "Snare Fat 57", "Vocals Male Rock", "Vocals Male Rock Extreme"]

OFF_ON = ["Off", "On"]
GAIN = ["auto"] + [f"{db}.0dB" for db in range(0, 21)]
THRESHOLD = [f"{db}.0dB" for db in range(-20, 11, 2)]


def decibels(lowest, highest):
    return {f"{db}.0dB": (db - lowest) / (highest - lowest) for db in range(lowest, highest + 1, 5)}


def hertz(lowest, highest, between, names=None):
    travel = math.log10(highest / lowest)
    return {(names or {}).get(hz, f"{hz}Hz"): math.log10(hz / lowest) / travel for hz in [lowest, *between, highest]}


def parameters():
    """Identifier: name, default, texts (a list for every step in order, or text and position of a scale), and some words
    of what is said about it."""
    table = {}
    for band, gain, threshold in ("Low", 2 / 21, 1 / 3), ("Mid", 4 / 21, 2 / 3), ("High", 4 / 21, 3 / 5):
        table.update({
            f"{band}Meter": (f"{band} Meter", 0.5, ["In", "Control", "Out"], "what the band's meter shows"),
            f"{band}In": (f"{band} In", 1.0, OFF_ON, "Puts the band's compressor in"),
            f"{band}Solo": (f"{band} Solo", 0.0, OFF_ON, "Mutes every band"),
            f"{band}MidSide": (f"{band} Mid Side", 0.5, ["Mid", "Off", "Side"], "the sum of the two channels"),
            f"{band}Gain": (f"{band} Gain", gain, GAIN, "Make-up behind the compressor"),
            f"{band}Ratio": (f"{band} Ratio", 0.5, ["1.5:1", "2:1", "3:1", "4:1", "6:1"], "How hard the band"),
            f"{band}Threshold": (f"{band} Threshold", threshold, THRESHOLD, "Where the band begins to turn down"),
            f"{band}Attack": (f"{band} Attack", 2 / 3, ["2uS", "0.5mS", "2mS", "10mS"], "How fast the band turns down"),
            f"{band}Recovery": (f"{band} Recovery", 1.0, ["100mS", "400mS", "800mS", "1.5S", "Auto"],
                                "How fast the band comes back")})
    table.update({
        "Mix": ("Mix", 1.0, {f"{percent}%": percent / 100 for percent in range(0, 101, 10)}, "Share of the processed"),
        "HPF": ("HPF", 0.0, hertz(20, 500, [50, 100, 200], {20: "OFF"}), "the lows out of what the detectors listen to"),
        "MasterGain": ("Master Gain", 1 / 3, decibels(-10, 20), "behind the transformer"),
        "LowXOver": ("Low XOverParameter", 0.30103, hertz(50, 5000, [100, 200, 500, 1000, 2000]), "Where the low band"),
        "HighXOver": ("High XOverParameter", 0.786176, hertz(200, 12000, [500, 1000, 2000, 5000, 10000]),
                      "the high band begins"),
        "Nuke": ("Nuke", 0.0, OFF_ON, "Overdrives everything"),
        "Niveau": ("Niveau", 1.0, OFF_ON, "Tilts what the detectors listen to"),
        "Link": ("Link", 0.0, OFF_ON, "the same control of the other two"),
        "Bypass": ("Bypass", 0.0, ["In", "Byp"], "Fades to the input"),
        "InLevel": ("In Level", 0.5, decibels(-10, 10), "Level into the unit"),
        "OutLevel": ("Out Level", 0.5, decibels(-10, 10), "Level out of the unit")})
    return table


class Graph:
    """The statements of all files: names as they are, blank nodes as _:name, literals as (text, type)."""

    LINE = re.compile(r'(<[^>]*>|_:\S+) <([^>]*)> (<[^>]*>|_:\S+|"(?:[^"\\]|\\.)*"(?:\^\^<[^>]*>|@\S+)?) \.')

    def __init__(self):
        self.statements = collections.defaultdict(lambda: collections.defaultdict(list))

    def read(self, file):
        # Blank nodes are numbered anew in each run: the file's name keeps them apart.
        listing = subprocess.run(["sordi", "-o", "ntriples", file.name, "file:///bundle/"], cwd=file.parent,
                                 capture_output=True, text=True, check=True)
        if listing.stderr:
            raise ValueError(f"{file.name}: {listing.stderr}")
        for line in listing.stdout.splitlines():
            match = self.LINE.fullmatch(line)
            if match is None:
                raise ValueError(f"{file.name}: {line}")
            subject, verb, value = match.groups()
            self.statements[self.term(subject, file.name)][verb].append(self.term(value, file.name))

    @staticmethod
    def term(text, scope):
        if text.startswith("<"):
            return text[1:-1]
        if text.startswith("_:"):
            return f"_:{scope}:{text[2:]}"
        literal, _, kind = text.rpartition('"')
        return re.sub(r"\\(.)", r"\1", literal[1:]), kind.replace("^^", "").strip("<>")

    def all(self, subject, verb):
        return self.statements[subject].get(verb, []) if subject in self.statements else []

    def one(self, subject, verb):
        found = self.all(subject, verb)
        return found[0] if len(found) == 1 else f"({len(found)} values)"

    def text(self, subject, verb):
        found = self.one(subject, verb)
        return found[0] if isinstance(found, tuple) else found

    def number(self, subject, verb):
        try:
            return float(self.text(subject, verb))
        except ValueError:
            return math.nan


def as_float(number):
    return struct.unpack("f", struct.pack("f", number))[0]


class Check:
    def __init__(self, bundle):
        self.bundle = bundle
        self.problems = []
        self.files = sorted(path.name for path in bundle.iterdir())
        self.turtle = [name for name in self.files if name.endswith(".ttl")]

    def expect(self, found, wanted, what):
        if found != wanted:
            self.problems.append(f"{what}: {found!r}, where {wanted!r} is due")

    def host_tool(self, *command):
        # The vocabulary's own bundles tell the tool what a class is called.
        return subprocess.run(command, env={"LV2_PATH": f"{self.bundle.parent}:/usr/lib/lv2", "HOME": "/nonexistent"},
                              capture_output=True, text=True, check=False).stdout

    def shape(self):
        self.expect(" " in self.bundle.name, False, "a blank in the name, with which no LV2 host can load it")
        self.expect(self.files, ["dsp.ttl", "libCorvaneQ7.so", "manifest.ttl", "ui.ttl"], "files")
        for name in self.turtle:
            text = (self.bundle / name).read_bytes()
            self.expect(text.isascii(), True, f"{name}: ASCII alone")
            without_addresses = re.sub(rb"<https?://[^>]*>", b"", text)
            self.expect(re.findall(rb".*/.*|.*file:.*", without_addresses), [], f"{name}: paths of a machine")

    def hosts(self):
        self.expect(URI in self.host_tool("lv2ls").split(), True, "lv2ls lists it")
        info = self.host_tool("lv2info", URI)
        for wanted in ("Name:              Corvane Q7", "Class:             Compressor Plugin",
                       "Author:            Corvane", "Has latency:       yes, reported by port 6", "Audio In 1",
                       "Audio Out 2"):
            self.expect(wanted in info, True, f"lv2info says '{wanted}'")
        presets = re.search(r"Presets:\s*\n((?:\t .*\n)+)", info)
        listed = [line.strip() for line in presets.group(1).splitlines()] if presets else []
        self.expect(sorted(listed), sorted(PROGRAMS), "lv2info's presets")

    @staticmethod
    def validate(folder, names):
        """What the validator says: its counts of errors, files and restrictions, and all else, line by line."""
        # It reads names relative to where it stands, and skips one that has a blank.
        run = subprocess.run(["lv2_validate", *names], cwd=folder, capture_output=True, text=True, check=False)
        total = re.search(r"^Found (\d+) errors among (\d+) files \(checked (\d+) restrictions\)$", run.stdout, re.M)
        rest = [line for line in (run.stdout + run.stderr).splitlines()
                if not line.startswith("Found ") and line != "Skipping file /usr/lib/lv2/core.lv2/lv2core.doap.ttl"]
        return (*map(int, total.groups()), rest) if total else (None, 0, 0, rest)

    def validator(self):
        errors, num_files, restrictions, said = self.validate(self.bundle, self.turtle)
        num_others = self.validate(self.bundle, self.turtle[:1])[1] - 1
        self.expect(errors, 0, "lv2_validate's errors")
        self.expect(num_files - num_others, 3, "the bundle's files that lv2_validate looked at")
        self.expect(said, [], "lv2_validate's lines")

        # It counts files that it could not read as well. So a fault put into each of them must show.
        for name in self.turtle:
            with tempfile.TemporaryDirectory() as folder:
                for copied in self.turtle:
                    shutil.copy(self.bundle / copied, folder)
                with open(pathlib.Path(folder) / name, "a", encoding="ascii") as file:
                    file.write(f"\n<{URI}> <{URI}:Undescribed> 1 .\n")
                found = self.validate(folder, self.turtle)[0] or 0
                self.expect(found > (errors or 0), True, f"lv2_validate finds a fault put into {name}")

        return restrictions

    def plugin(self, graph, manifest):
        self.expect(manifest.all(URI, RDF + "type"), [LV2 + "Plugin"], "the manifest's type")
        self.expect(manifest.one(URI, LV2 + "binary"), "file:///bundle/libCorvaneQ7.so", "the binary")
        self.expect(set(graph.all(URI, RDF + "type")), {LV2 + "Plugin", LV2 + "CompressorPlugin", DOAP + "Project"},
                    "types")
        self.expect(graph.text(URI, DOAP + "name"), "Corvane Q7", "name")
        self.expect(graph.one(URI, DOAP + "license"), LICENCE, "licence")
        self.expect(len(graph.text(URI, RDFS + "comment")) > 40, True, "a comment that says something")
        self.expect(len(graph.all(URI, LV2 + "port")), 9, "ports")

        # 0 and odd numbers stand for versions that hosts may hide; hosts choose between bundles by the manifest.
        for verb, lowest in ("minorVersion", 2), ("microVersion", 0):
            version = manifest.number(URI, LV2 + verb)
            self.expect(version >= lowest and version % 2 == 0, True, f"lv2:{verb} {version} is that of a release")
            self.expect(set(graph.all(URI, LV2 + verb)), set(manifest.all(URI, LV2 + verb)), f"lv2:{verb} in both files")

        window = f"{URI}:UI"
        self.expect(graph.one(URI, UI + "ui"), window, "the window")
        self.expect(UI + "idleInterface" in graph.all(window, LV2 + "requiredFeature"), True, "the window's idle calls")
        self.expect(UI + "resize" in graph.all(window, LV2 + "extensionData"), True, "the window's resizing")

    def presets(self, graph):
        found = [subject for subject in graph.statements if PRESETS + "Preset" in graph.all(subject, RDF + "type")]
        self.expect(sorted(found), sorted(f"{URI}:preset{i + 1}" for i in range(len(PROGRAMS))), "presets")
        for i, name in enumerate(PROGRAMS):
            preset = f"{URI}:preset{i + 1}"
            self.expect(graph.text(preset, RDFS + "label"), name, f"{preset}: label")
            self.expect(graph.one(preset, LV2 + "appliesTo"), URI, f"{preset}: plug-in")
            state = graph.one(preset, STATE + "state")
            self.expect(dict(graph.statements[state]), {f"{URI}:Program": [(str(i), XSD + "int")]}, f"{preset}: state")
        for name, kind in ("Program", "int"), ("StateString", "string"):
            self.expect(graph.one(f"{URI}:{name}", RDF + "type"), RDF + "Property", f"{name}: type")
            self.expect(graph.one(f"{URI}:{name}", RDFS + "range"), XSD + kind, f"{name}: range")

    def parameters(self, graph):
        table = parameters()
        wanted = {f"{URI}:{identifier}" for identifier in table}
        described = [subject for subject in graph.statements if LV2 + "Parameter" in graph.all(subject, RDF + "type")]
        self.expect(set(described), wanted, "parameters")
        for verb in "writable", "readable":
            listed = graph.all(URI, PATCH + verb)
            self.expect((set(listed), len(listed)), (wanted, len(wanted)), f"patch:{verb}")
        for identifier, row in table.items():
            self.parameter(graph, identifier, *row)

        # Positions have no unit that a host could take for decibels: theirs prints the number and nothing else.
        unit = f"{URI}:Position"
        self.expect(graph.one(unit, RDF + "type"), UNITS + "Unit", "the unit")
        self.expect(graph.text(unit, UNITS + "render"), "%f", "the unit's print")
        self.expect(graph.all(unit, UNITS + "symbol"), [], "the unit's sign")

    def parameter(self, graph, identifier, name, default, texts, words):
        subject = f"{URI}:{identifier}"
        self.expect(graph.text(subject, LV2 + "symbol"), identifier, f"{identifier}: symbol")
        self.expect(graph.text(subject, LV2 + "name"), name, f"{identifier}: name")
        self.expect(graph.text(subject, RDFS + "label"), name, f"{identifier}: label")
        self.expect(graph.one(subject, RDFS + "range"), ATOM + "Float", f"{identifier}: range")
        self.expect(graph.one(subject, UNITS + "unit"), f"{URI}:Position", f"{identifier}: unit")
        for verb, value in ("minimum", 0.0), ("maximum", 1.0), ("default", default):
            found = graph.number(subject, LV2 + verb)
            self.expect(as_float(found), as_float(value), f"{identifier}: lv2:{verb}")

        properties = set()
        if isinstance(texts, list):
            properties = {LV2 + "enumeration"} | ({LV2 + "toggled"} if len(texts) == 2 else set())
        self.expect(set(graph.all(subject, LV2 + "portProperty")), properties, f"{identifier}: properties")

        # What the control does, and for hosts that show no scale points, how positions read.
        labels = list(texts)
        few = isinstance(texts, list) and len(texts) <= 6
        reading = f"from 0 to 1: {', '.join(labels)}" if few else f"from 0 ({labels[0]}) to 1 ({labels[-1]})"
        comment = graph.text(subject, RDFS + "comment")
        self.expect(words in comment, True, f"{identifier}: the comment '{comment}' says '{words}'")
        self.expect(f" {reading}. Default: " in comment, True, f"{identifier}: the comment '{comment}' says '{reading}'")

        nodes = graph.all(subject, LV2 + "scalePoint")
        points = sorted((graph.number(node, RDF + "value"), graph.text(node, RDFS + "label")) for node in nodes)
        if isinstance(texts, list):
            steps = [(as_float(i / (len(texts) - 1)), text) for i, text in enumerate(texts)]
            self.expect([(as_float(value), label) for value, label in points], steps, f"{identifier}: scale points")
        else:
            self.expect([label for _, label in points], list(texts), f"{identifier}: scale points")
            for value, label in points:
                # Defaults have six digits: what reads 200Hz lies that near to 200 Hz.
                near = abs(value - texts.get(label, math.inf)) < 1.0e-6
                self.expect(near, True, f"{identifier}: {label} at {value}, expected at {texts.get(label)}")
            self.expect(as_float(default) in [as_float(value) for value, _ in points], True,
                        f"{identifier}: the default is a scale point")

    def run(self):
        self.shape()
        self.hosts()
        restrictions = self.validator()

        manifest, graph = Graph(), Graph()
        manifest.read(self.bundle / "manifest.ttl")
        for name in self.turtle:
            graph.read(self.bundle / name)
        self.plugin(graph, manifest)
        self.presets(graph)
        self.parameters(graph)

        for problem in self.problems:
            print(problem)
        if not self.problems:
            print(f"lv2_validate: 0 errors, {restrictions} restrictions; {len(parameters())} parameters, {len(PROGRAMS)} presets")
        return 1 if self.problems else 0


if __name__ == "__main__":
    sys.exit(Check(pathlib.Path(sys.argv[1]).resolve()).run())
