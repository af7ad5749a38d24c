#!/usr/bin/env python3
"""Writes fuzz/corpus/drawing anew: fuzz/makeseeds.py

Each kind of command that drawing.cpp knows has a stream of its own, among others by chance. The
other targets begin with tests/images and tests/fonts.
"""

import random
from pathlib import Path

FOLDER = Path(__file__).resolve().parent / "corpus/drawing"
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


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    for kind in range(KINDS):
        (FOLDER / f"kind{kind:02}").write_bytes(stream(kind))


if __name__ == "__main__":
    main()
