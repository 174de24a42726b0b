# SPDX-License-Identifier: GPL-3.0-or-later
"""Sound files for the renderer's tests: written and read byte by byte, so that nothing but the renderer is on trial.

Samples are lists of frames, frames are tuples of one number a channel: floats for float files, whole numbers for the
others.
"""

import collections
import struct

Sound = collections.namedtuple("Sound", "rate bits is_float frames data container")


def _flat(frames):
    return [sample for frame in frames for sample in frame]


def _pcm(frames, bits, byteorder):
    return b"".join(int(sample).to_bytes(bits // 8, byteorder, signed=True) for sample in _flat(frames))


def write_wav(path, frames, rate=48000, bits="32f", channels=None):
    """bits: 16, 24 or "32f". channels: needed when there are no frames."""
    channels = channels or len(frames[0])
    is_float = bits == "32f"
    width = 32 if is_float else bits
    data = struct.pack(f"<{len(frames) * channels}f", *_flat(frames)) if is_float else _pcm(frames, bits, "little")
    block = channels * width // 8
    shape = struct.pack("<HHIIHH", 3 if is_float else 1, channels, rate, rate * block, block, width)
    body = b"WAVE" + b"fmt " + struct.pack("<I", len(shape)) + shape + b"data" + struct.pack("<I", len(data)) + data
    path.write_bytes(b"RIFF" + struct.pack("<I", len(body)) + body)
    return path


def write_aiff(path, frames, rate=48000):
    """16 bits a sample."""
    data = _pcm(frames, 16, "big")
    exponent = rate.bit_length() - 1
    rate_of_80_bits = struct.pack(">HQ", 16383 + exponent, rate << (63 - exponent))
    shape = struct.pack(">hIh", len(frames[0]), len(frames), 16) + rate_of_80_bits
    sound = struct.pack(">II", 0, 0) + data
    body = b"AIFF" + b"COMM" + struct.pack(">I", len(shape)) + shape + b"SSND" + struct.pack(">I", len(sound)) + sound
    path.write_bytes(b"FORM" + struct.pack(">I", len(body)) + body)
    return path


def _check_sum(data, polynomial, width):
    value, top = 0, 1 << (width - 1)
    for byte in data:
        value ^= byte << (width - 8)
        for _ in range(8):
            value = (value << 1 ^ polynomial if value & top else value << 1) & ((1 << width) - 1)
    return value


def write_flac(path, frames, rate=48000, announced=None):
    """16 bits a sample, one channel, stored without compression in blocks of 1024 frames. announced: how many frames its
    head tells, where it is not how many there are; 0 stands for nobody knows."""
    block_size = 1024
    bits = rate << 44 | (1 - 1) << 41 | (16 - 1) << 36 | (len(frames) if announced is None else announced)
    info = struct.pack(">HH", block_size, block_size) + bytes(6) + bits.to_bytes(8, "big") + bytes(16)
    stream = b"fLaC" + bytes([0x80]) + len(info).to_bytes(3, "big") + info

    for number, first in enumerate(range(0, len(frames), block_size)):
        block = frames[first:first + block_size]
        # Sync code; block size in 16 bits and the rate of the head; one channel, 16 bits; number; size less one.
        head = bytes([0xFF, 0xF8, 0x70, 0x08]) + chr(number).encode("utf-8") + struct.pack(">H", len(block) - 1)
        head += bytes([_check_sum(head, 0x07, 8)])
        verbatim = bytes([0x02]) + _pcm(block, 16, "big")
        stream += head + verbatim + struct.pack(">H", _check_sum(head + verbatim, 0x8005, 16))

    path.write_bytes(stream)
    return path


def wav_chunks(content):
    """The chunks of a RIFF or RF64 file, by name."""
    container = content[:4].decode("ascii")
    assert container in ("RIFF", "RF64") and content[8:12] == b"WAVE", content[:12]
    chunks, at = {}, 12
    while at + 8 <= len(content):
        size = struct.unpack_from("<I", content, at + 4)[0]
        chunks[content[at:at + 4]] = content[at + 8:at + 8 + size]
        at += 8 + size + size % 2
    return chunks


def read_wav(path):
    content = path.read_bytes()
    container = content[:4].decode("ascii")
    chunks = wav_chunks(content)
    tag, channels, rate, _, _, bits = struct.unpack_from("<HHIIHH", chunks[b"fmt "])
    if tag == 0xFFFE:       # the longer description holds the tag at the head of a number of 16 bytes
        tag, = struct.unpack_from("<H", chunks[b"fmt "], 24)
    data = chunks[b"data"]
    if tag == 3:
        samples = struct.unpack(f"<{len(data) // 4}f", data)
    else:
        width = bits // 8
        samples = [int.from_bytes(data[i:i + width], "little", signed=True) for i in range(0, len(data), width)]
    frames = list(zip(*(samples[c::channels] for c in range(channels))))
    return Sound(rate, bits, tag == 3, frames, data, container)
