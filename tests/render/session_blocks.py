# SPDX-License-Identifier: GPL-3.0-or-later
"""Session blocks for the renderer's tests: read and made byte by byte."""

import re
import struct

MAGIC = 0x21324356
HEAD = struct.Struct("<II")


def read_state(path):
    """The attributes of a block in their order, as texts. Whatever is not as a host knows it is an error."""
    content = path.read_bytes()
    magic, length = HEAD.unpack_from(content)
    assert magic == MAGIC and length == len(content) - 9 and content[-1:] == b"\0", content[:8]
    text = content[8:-1].decode("utf-8")
    element = re.fullmatch(r'<CQ7SETTINGS((?: \w+="[^"<&]*")*)/>', text)
    assert element, text
    return dict(re.findall(r'(\w+)="([^"]*)"', element[1]))


def block(text):
    content = text.encode("utf-8")
    return HEAD.pack(MAGIC, len(content)) + content + b"\0"


def state(**attributes):
    """A block with these attributes alone."""
    return block("<CQ7SETTINGS" + "".join(f' {name}="{value}"' for name, value in attributes.items()) + "/>")
