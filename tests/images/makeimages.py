#!/usr/bin/python3
"""Writes the sample pictures into this folder, with Pillow and jpegtran. See README.md."""

import struct
import subprocess
import zlib
from pathlib import Path

from PIL import Image

FOLDER = Path(__file__).resolve().parent
WIDTH, HEIGHT = 29, 19  # No multiple of a JPEG block, nor of a PNG pass.
WHOLE = [(0, 0, 1, 1)]
ADAM7 = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2),
         (0, 1, 1, 2)]
# Each frequency as it is, in one scan.
SCANS = "0 1 2: 0-0, 0, 0;\n" + "".join(f"{i}: 1-63, 0, 0;\n" for i in range(3))
GREY_ALPHA, PALETTE, RGBA = 4, 3, 6


def colour(x, y):
    """What all pictures show: smooth, so that lossy formats keep it."""
    r, g = 255 * x // (WIDTH - 1), 255 * y // (HEIGHT - 1)
    return r, g, 255 - (r + g) // 2, 255 * (x + y) // (WIDTH + HEIGHT - 2)


def write_png(name, kind, depth, pack, passes=WHOLE, chunks=()):
    """`pack` gives the bytes of a pixel."""
    header = struct.pack(">IIBBBBB", WIDTH, HEIGHT, depth, kind, 0, 0, passes is ADAM7)
    rows = (b"\0" + b"".join(pack(x, y) for x in range(left, WIDTH, across))
            for left, top, across, down in passes for y in range(top, HEIGHT, down))
    with open(FOLDER / name, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        for chunk, data in ((b"IHDR", header), *chunks, (b"IDAT", zlib.compress(b"".join(rows))),
                            (b"IEND", b"")):
            checksum = zlib.crc32(chunk + data)
            file.write(struct.pack(">I", len(data)) + chunk + data + struct.pack(">I", checksum))


def save(name, mode, pixel, **options):
    image = Image.new(mode, (WIDTH, HEIGHT))
    image.putdata([pixel(*colour(x, y)) for y in range(HEIGHT) for x in range(WIDTH)])
    image.save(FOLDER / name, **options)


def sixteen_bits(x, y):
    """A little less than the same in two bytes, so that only rounding gives the same again."""
    r, _, _, a = colour(x, y)
    return struct.pack(">HH", max(r * 257 - 100, 0), max(a * 257 - 100, 0))


entries = [colour(i % 8 * 4, i // 8 * 4) for i in range(40)]
palette = ((b"PLTE", b"".join(bytes(entry[:3]) for entry in entries)),
           (b"tRNS", bytes(entry[3] for entry in entries)))
write_png("rgba8.png", RGBA, 8, lambda x, y: bytes(colour(x, y)))
write_png("rgba8interlaced.png", RGBA, 8, lambda x, y: bytes(colour(x, y)), ADAM7)
write_png("greyalpha16.png", GREY_ALPHA, 16, sixteen_bits)
write_png("palette8.png", PALETTE, 8, lambda x, y: bytes([y // 4 * 8 + x // 4]), WHOLE, palette)
save("rgb.jpg", "RGB", lambda r, g, b, a: (r, g, b), quality=97)
subprocess.run(["jpegtran", "-scans", "/dev/stdin", "-outfile", FOLDER / "progressive.jpg",
                FOLDER / "rgb.jpg"], input=SCANS, text=True, check=True)
save("grey.jpg", "L", lambda r, g, b, a: r, quality=97)
save("lossless.webp", "RGBA", lambda *rgba: rgba, lossless=True)

# Pillow stores inks inverted, under an Adobe marker.
save("cmykinverted.jpg", "CMYK", lambda r, g, b, a: (255 - r, 255 - g, 255 - b, 51), quality=97)
save("cmyk.jpg", "CMYK", lambda r, g, b, a: (r, g, b, 204), quality=97)
stored = (FOLDER / "cmyk.jpg").read_bytes()
marker = stored.index(b"\xFF\xEE")
(FOLDER / "cmyk.jpg").write_bytes(stored[:marker] + stored[marker + 16:])
