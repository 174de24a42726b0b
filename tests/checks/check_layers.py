#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when an include runs upstairs.

The folders of source/ are floors: each may include the floors named beside it, and nothing of tests/, tools/ or bench/.
The lower two know nothing of the framework either, so that the sound can be built for any machine by itself.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCE = ROOT / "source"

# floor: the floors whose headers it may include besides its own
FLOORS = {
    "settings": [],
    "dsp": ["settings"],
    "parameters": ["settings"],
    "processor": ["settings", "dsp", "parameters"],
    "assets": [],
    "editor": ["settings", "dsp", "parameters", "processor", "assets"],
    "plugin": ["settings", "dsp", "parameters", "processor", "editor"],
}
WITHOUT_FRAMEWORK = {"settings", "dsp"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
STANDARD_HEADER = re.compile(r"[a-z_]+")        # <vector>, <cmath>: no folder, no ending
INTRINSICS = {"immintrin.h", "xmmintrin.h", "emmintrin.h", "arm_neon.h"}  # the compiler's, as good as standard
MADE = {"CorvaneAssetData.h": "assets"}  # by the build


def fault_of(floor, path, kind, name):
    """What is wrong with an include, or None."""
    if kind == "<":
        if STANDARD_HEADER.fullmatch(name) or name in INTRINSICS or floor not in WITHOUT_FRAMEWORK:
            return None
        return f"<{name}> is neither of this floor nor of the standard library"

    if (SOURCE / name).is_file():
        target = name.split("/")[0]
    elif (path.parent / name).is_file():
        target = (path.parent / name).resolve().relative_to(SOURCE).parts[0]
    elif name in MADE:
        target = MADE[name]
    elif name.startswith("juce_"):
        return None if floor not in WITHOUT_FRAMEWORK else f'"{name}" is of the framework'
    else:
        return f'"{name}" is no header below source/'

    if target != floor and target not in FLOORS[floor]:
        return f'"{name}" is of {target}/, which {floor}/ must not see'
    return None


def main():
    faults, seen = [], dict.fromkeys(FLOORS, 0)

    for path in sorted(SOURCE.rglob("*")):
        if path.suffix not in {".h", ".cpp", ".inc"}:
            continue
        floor = path.relative_to(SOURCE).parts[0]
        if floor not in FLOORS:
            faults.append(f"{path.relative_to(ROOT)}: is on no floor that is named here")
            continue
        seen[floor] += 1
        for kind, name in INCLUDE.findall(path.read_text()):
            if fault := fault_of(floor, path, kind, name):
                faults.append(f"{path.relative_to(ROOT)}: {fault}")

    faults += [f"source/{floor}: holds no source" for floor, files in seen.items() if files == 0]
    print("\n".join(faults) or f"{sum(seen.values())} files on {len(seen)} floors")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
