#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the unit that a bundle compiles out of the framework's wrapper: its text, with a few lines replaced by ours.

    mend_wrapper.py VST3|LV2 WRAPPER-FILE OUTPUT-FILE

The framework's own file trusts what a host hands it. Each rule below names what it mends, the place by a pattern that
stands there exactly once, and what stands there instead. A file in which a pattern stands not at all or more than once is
another version's: nothing is written then, since a bundle with half of the rules would look mended and not be.
"""
import pathlib
import re
import sys

SIZE_FOLLOWS_ZOOM = "the window's own size, which follows from zoom and scale and not from the host's rounded one"

RULES = {
    "VST3": [
        ("the end of a session that is the wrapper's own",
         r"String magic \([^;]*;\s*if \(magic == kJucePrivateDataIdentifier\)",
         "if (WrapperState::endsWithPrivateData (data, static_cast<size_t> (size)))"),
        ("a session that a host's stream hands over in pieces",
         r"state->read \(block\.getData\(\), static_cast<int32> \(block\.getSize\(\)\), &bytesRead\)",
         "state->read (static_cast<char*> (block.getData()) + len, static_cast<int32> (block.getSize()) - len,"
         " &bytesRead)"),
        ("exceptions while a session is restored",
         r"tresult PLUGIN_API setState \(IBStream\* state\) override",
         "tresult PLUGIN_API setState (IBStream* state) override\n"
         "    { return ExceptionGuard::call (tresult { kResultFalse }, [&] { return restoreState (state); }); }\n\n"
         "    tresult restoreState (IBStream* state)"),
        ("exceptions while a session is saved",
         r"tresult PLUGIN_API getState \(IBStream\* state\) override",
         "tresult PLUGIN_API getState (IBStream* state) override\n"
         "    { return ExceptionGuard::call (tresult { kResultFalse }, [&] { return saveState (state); }); }\n\n"
         "    tresult saveState (IBStream* state)"),
        (SIZE_FOLLOWS_ZOOM + " (host resizes)",
         r"pluginEditor->setBounds \(pluginEditor->getLocalArea \(this, newBounds\)",
         "if (pluginEditor->isResizable()) pluginEditor->setBounds (pluginEditor->getLocalArea (this, newBounds)"),
        (SIZE_FOLLOWS_ZOOM + " (scale changes)",
         r"prevEditorBounds = pluginEditor->getLocalArea \(this, lastBounds\)",
         "prevEditorBounds = pluginEditor->getLocalBounds()"),
    ],
    "LV2": [
        ("the text of a session",
         r"block\.fromBase64Encoding \(text\);",
         "if (! WrapperState::fromText (text, block)) return LV2_STATE_ERR_UNKNOWN;"),
        ("the entry of the plug-in",
         r"LV2_SYMBOL_EXPORT const LV2_Descriptor\* lv2_descriptor \(",
         "const LV2_Descriptor* frameworkDescriptor (uint32_t);\nconst LV2_Descriptor* frameworkDescriptor ("),
        ("the entry of its window",
         r"LV2_SYMBOL_EXPORT const LV2UI_Descriptor\* lv2ui_descriptor \(",
         "const LV2UI_Descriptor* frameworkUIDescriptor (uint32_t);\n"
         "const LV2UI_Descriptor* frameworkUIDescriptor ("),
        (SIZE_FOLLOWS_ZOOM,
         r"editor->setBoundsConstrained \(",
         "if (editor->isResizable()) editor->setBoundsConstrained ("),
    ],
}

HEAD = """// Made by tools/wrappers/mend_wrapper.py from {source}: do not edit.
#include "plugin/ExceptionGuard.h"
#include "plugin/WrapperState.h"

"""


def mend(kind, source, text):
    """The mended text; raises ValueError with a sentence for the builder."""
    for what, pattern, replacement in RULES[kind]:
        count = len(re.findall(pattern, text))
        if count != 1:
            raise ValueError(
                f"{source} is not the {kind} wrapper of the framework's version 7.0.5: the place of {what} was found"
                f" {count} times instead of once. Compare how this version does it, then adapt the rules in"
                " tools/wrappers/mend_wrapper.py.")
        text = re.sub(pattern, lambda _: replacement, text)
    return HEAD.format(source=pathlib.Path(source).name) + text


def main(arguments):
    if len(arguments) != 3 or arguments[0] not in RULES:
        print(__doc__, file=sys.stderr)
        return 2

    kind, source, output = arguments
    try:
        mended = mend(kind, source, pathlib.Path(source).read_text(encoding="utf-8"))
    except (OSError, UnicodeDecodeError, ValueError) as error:
        print(f"mend_wrapper.py: {error}", file=sys.stderr)
        return 1

    # An unchanged unit keeps its date: a new configure step compiles nothing.
    target = pathlib.Path(output)
    if not target.exists() or target.read_text(encoding="utf-8") != mended:
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(mended, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
