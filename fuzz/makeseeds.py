#!/usr/bin/env python3
"""Writes fuzz/corpus anew: fuzz/makeseeds.py

Each kind of command that drawing.cpp knows has a stream of its own, among others by chance; traces
are the records of one with most kinds of operations. The other targets begin with tests/images and
tests/fonts.
"""

import random
import struct
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
FOLDER = PROJECT / "fuzz/corpus/drawing"
TRACES = PROJECT / "fuzz/corpus/traces"
KINDS = 12  # Stage::Do()
LENGTH = 48  # kCommand


def stream(kind):
    """Twelve commands, of which every other is of that kind."""
    chance = random.Random(kind)
    commands = bytearray()
    for number in range(12):
        command = chance.randrange(KINDS) if number % 2 else kind
        commands += bytes([command]) + chance.randbytes(LENGTH - 1)
    return commands


IDENTITY = struct.pack("<5f", 0, 0, 1, 1, 0)
MATRIX = struct.pack("<9fB", 0.8, 0.3, 0, -0.3, 0.8, 0, 20, 10, 1, 7)
NO_MASK = struct.pack("<I?", 0, False)
MASK = struct.pack("<I?8f", 4, True, 0, 0, 16, 0, 16, 16, 0, 16)
CONTEXT, SCREEN, FILE, BITMAP, FONT, PICTURE = 1, 2, 3, 4, 5, 6


def numbers(*values):
    return struct.pack(f"<{len(values)}I", *(value & 0xFFFFFFFF for value in values))


def text(characters):
    return numbers(len(characters) + 1) + characters + b"\0"


def record(operation, *fields):
    body = b"".join(fields)
    return struct.pack("<IHHQ", 12 + len(body), operation, 0, operation) + body


def trace():
    """The numbers of the operations are those of tools/zirktrace/operations.h."""
    font = (PROJECT / "tests/fonts/bitmap.bdf").read_bytes()
    picture = (PROJECT / "tests/images/palette8.png").read_bytes()
    rect, point, white = numbers(4, 4, 20, 10), numbers(3, 5), numbers(0xFFFFFFFF)
    yield record(4, numbers(CONTEXT), text(b"libZIRKImplFB.so"), b"\0")
    yield record(21, numbers(CONTEXT, 64, 48), b"\0\2", numbers(0), b"\0", numbers(SCREEN, 64, 48, 0))
    yield record(22, numbers(CONTEXT, 16, 16, 5), numbers(BITMAP, 16, 16, 5))
    yield record(1, numbers(FILE), font)
    yield record(2, numbers(FONT, FILE, 0, 10), b"\0\0")
    yield record(3, numbers(FONT, 2, 80, 63, FILE, 0, 10))
    yield record(1, numbers(PICTURE), picture)
    yield record(25, numbers(CONTEXT, PICTURE, len(picture)), numbers(7, 8, 8, 0))
    yield record(7, numbers(BITMAP, 0, 0, 8, 8, PICTURE, 8), b"\1")
    yield record(8, numbers(BITMAP, 0, 4, 16, 2, PICTURE))
    for operation, fields in (
            (51, text(b"screen")), (52, b""), (53, white), (58, numbers(2, 2, 50, 40)),
            (60, numbers(1, 5)), (61, numbers(1, 5, 1, 0)), (63, b"\1"), (65, white), (67, numbers(1)),
            (68, point + struct.pack("<f", 3) + white + IDENTITY + numbers(0) + bytes(8)),
            (70, point + point + white + IDENTITY + NO_MASK), (72, rect + white + IDENTITY + MASK),
            (73, rect + white + MATRIX + NO_MASK),
            (74, rect + numbers(7) + rect + IDENTITY + white + NO_MASK),
            (75, rect + numbers(BITMAP) + rect + MATRIX + white + MASK),
            (77, numbers(FONT) + text(b"AB") + point + white + IDENTITY + NO_MASK + bytes(16)),
            (78, numbers(FONT) + text(b"A") + point + white + MATRIX + NO_MASK + rect),
            (79, b"\1\1"), (80, b"\1"), (83, rect + b"\1"), (84, point + numbers(7) + rect + b"\1"),
            (100, b"")):
        yield record(operation, numbers(SCREEN), fields)
    yield record(6, numbers(CONTEXT))


def main():
    TRACES.mkdir(parents=True, exist_ok=True)
    (TRACES / "operations").write_bytes(b"".join(trace()))
    FOLDER.mkdir(parents=True, exist_ok=True)
    for kind in range(KINDS):
        (FOLDER / f"kind{kind:02}").write_bytes(stream(kind))


if __name__ == "__main__":
    main()
