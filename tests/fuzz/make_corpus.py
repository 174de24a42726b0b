#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the seeds of the session fuzzer into corpus/: small blocks of every kind that a reader has to survive."""
import struct
import sys
from pathlib import Path

HERE = Path(__file__).parent
sys.path.insert(0, str(HERE.parent / "states"))
import make_states  # noqa: E402  (the sessions of version 1.0.0 are seeds too)

MAGIC = 0x21324356


def raw(magic, length, data):
    return struct.pack("<II", magic, length & 0xFFFFFFFF) + data


def around(text):
    data = text if isinstance(text, bytes) else text.encode()
    return raw(MAGIC, len(data), data + b"\0")


def element(**attributes):
    return "<CQ7SETTINGS " + " ".join(f'{k}="{v}"' for k, v in attributes.items()) + "/>"


def seeds():
    default = make_states.text_of(make_states.program(0))
    yield "valid-default", around(default)
    yield "valid-program-04", around(make_states.text_of(make_states.program(4)))
    yield "valid-program-11", around(make_states.text_of(make_states.program(11)))
    yield "valid-lowest", around(make_states.text_of([0] * 38, (16, 2, 0.7)))
    yield "valid-highest", around(make_states.text_of([1] * 38, (24, 4, 1.0)))
    yield "valid-preset", around(make_states.text_of(make_states.program(9), (16, 8, 0.8), ' IsPreset="1"'))
    yield "valid-one-attribute", around(element(LowGain="0.5"))
    yield "valid-empty-element", around("<CQ7SETTINGS/>")
    yield "valid-declaration", around('<?xml version="1.0" encoding="UTF-8"?> ' + element(Mix="0.5"))
    yield "valid-linked", around(element(Link="1", LowGain="0", MidGain="0.5", HighGain="1"))
    yield "empty", b""
    yield "header-only", raw(MAGIC, 0, b"")
    yield "header-part", raw(MAGIC, 10, b"")[:5]
    yield "wrong-magic", raw(MAGIC ^ 1, len(default), default.encode() + b"\0")
    yield "length-zero", raw(MAGIC, 0, default.encode())
    yield "length-negative", raw(MAGIC, -1, default.encode())
    yield "length-huge", raw(MAGIC, 100_000_000, default.encode())
    yield "length-short", raw(MAGIC, 300, default.encode())
    yield "instruction-inside", around("<CQ7SETTINGS><?x?>y</CQ7SETTINGS>")
    whole = element(Mix="0.5").encode()
    yield "length-in-a-character", raw(MAGIC, len(whole) + 1, whole + "\u00e4".encode() + b"\0")
    yield "length-in-a-character-at-the-end", raw(MAGIC, len(whole) + 3, whole + "\U0001f3b5".encode()[:3])
    yield "cut-in-a-number", around(default[:200])
    yield "cut-after-an-attribute", raw(MAGIC, 5000, default[: default.index(" Mix")].encode())
    yield "other-tag", around(default.replace("CQ7SETTINGS", "CQ8SETTINGS"))
    yield "small-letters", around(default.lower())
    yield "entity-nested", around('<!DOCTYPE a [<!ENTITY b "xxxxxxxx"><!ENTITY c "&b;&b;&b;&b;&b;&b;&b;&b;">'
                                  '<!ENTITY d "&c;&c;&c;&c;&c;&c;&c;&c;">]>' + element(Mix="&d;&d;&d;&d;&d;&d;"))
    yield "entity-recursive", around('<!DOCTYPE a [<!ENTITY b "&c;&c;"><!ENTITY c "&b;&b;">]>' + element(Mix="&b;"))
    yield "entity-cut", raw(MAGIC, 5000, b'<CQ7SETTINGS Mix="&#x')
    yield "nesting-deep", around("<CQ7SETTINGS>" + "<a>" * 3000)
    yield "nesting-63", around("<CQ7SETTINGS>" + "<a>" * 62 + "</a>" * 62 + "</CQ7SETTINGS>")
    yield "attributes-many", around("<CQ7SETTINGS " + " ".join(f'a{i}="1"' for i in range(1000)) + "/>")
    yield "attributes-twice", around('<CQ7SETTINGS Mix="0.1" Mix="0.9" Mix="x"/>')
    yield "numbers-not-finite", around(element(Mix="nan", HPF="inf", InLevel="-inf", LowXOver="1e400", LowRatio="NaN",
                                               Calibration="nan", Oversampling="inf", UIZoom="nan"))
    yield "numbers-beyond", around(element(Mix="1e30", LowRatio="1e30", MidMeter="-1e30", HighAttack="3.4e38",
                                           LowGain="-5", HighThreshold="7", Bypass="1e9", Link="-1"))
    yield "levels-beyond", around(element(InLevel="100", OutLevel="-100", MasterGain="30", HPF="9", LowXOver="-9"))
    yield "levels-overflow", around(element(InLevel="3e38", OutLevel="3e38", MasterGain="3e38", HPF="3e38"))
    yield "calibration-off", around(element(Calibration="-200", Mix="0.5"))
    yield "calibration-high", around(element(Calibration="700"))
    yield "oversampling-text", around(element(Oversampling=" 8x"))
    yield "oversampling-beyond", around(element(Oversampling="2000000000"))
    yield "oversampling-negative", around(element(Oversampling="-3", UIZoom="1e30"))
    yield "text-not-utf8", raw(MAGIC, 14, b"<CQ7SET" + b"\xca" * 15 + b"TINGS/>\0")
    yield "utf8-broken", around(b'<CQ7SETTINGS Mix="0.5\xff\xfe\xc3" \xf0\x9f="1"/>')


def main():
    corpus = HERE / "corpus"
    corpus.mkdir(exist_ok=True)
    for name, data in seeds():
        (corpus / name).write_bytes(data)


if __name__ == "__main__":
    main()
