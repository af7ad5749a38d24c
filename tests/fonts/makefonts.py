#!/usr/bin/env python3
"""Makes the outline fonts in this folder from installed ones. See README.md."""

import os

from fontTools.subset import Options, Subsetter
from fontTools.ttLib import TTFont
from fontTools.ttLib.ttCollection import TTCollection

FOLDER = os.path.dirname(os.path.abspath(__file__))
DEJAVU = "/usr/share/fonts/truetype/dejavu/DejaVuSans%s.ttf"
MICROHEI = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"

ASCII = range(0x20, 0x7F)
LATIN = [*ASCII, *range(0xA0, 0x180), *range(0x2010, 0x2028), 0x20AC]
SANS = [*LATIN, *range(0x386, 0x3CF), *range(0x400, 0x460), *range(0x2190, 0x2200),
        0x300, 0x301, 0x308]
CJK = [ord(c) for c in "こんにちは世界你好안녕하세요日本語中文한국어、。「」"
       "あいうえおかきくけアイウエオカキクケ一二三四五六七八九十人山川水火木金土月東西南北大小上下"]
OMEGA, OHM = 0x3A9, 0x2126


def cut_down(path, codes, keep_hints=True, number=0):
    """The font with these code points only, and its kerning as the old table."""
    font = TTFont(path, fontNumber=number, recalcTimestamp=False)
    options = Options()
    options.hinting = keep_hints
    options.legacy_kern = True
    options.layout_features = []
    options.notdef_outline = True
    options.drop_tables += ["GDEF", "GPOS", "GSUB", "MATH", "FFTM", "vhea", "vmtx"]
    cutter = Subsetter(options)
    cutter.populate(unicodes=codes)
    cutter.subset(font)
    return font


def rename(font, family, style, more=None):
    """Leaves the copyright, the licence and these names."""
    names = font["name"]
    kept = {id: names.getDebugName(id) for id in (0, 13)}
    names.names = []
    own = {1: family, 2: style, 3: f"{family} {style}", 4: f"{family} {style}", 5: "Version 1.0",
           6: f"{family}-{style}".replace(" ", "")}
    for id, text in sorted({**kept, **own, **(more or {})}.items()):
        if text:
            names.setName(text, id, 3, 1, 0x409)


def save(font, name):
    font.save(os.path.join(FOLDER, name))


def make_sans():
    font = cut_down(DEJAVU % "", SANS)
    rename(font, "ZIRK Test Sans", "Regular")
    for table in font["cmap"].tables:
        table.cmap[OHM] = table.cmap[OMEGA]
    save(font, "sans.ttf")

    font = cut_down(DEJAVU % "-Bold", LATIN)
    rename(font, "ZIRK Test Sans", "Bold", {16: "ZIRK Test Superfamily", 17: "Heavy"})
    save(font, "sansbold.ttf")

    font = cut_down(DEJAVU % "-Oblique", LATIN)
    rename(font, "ZIRK Test Sans", "Oblique")
    save(font, "sansoblique.ttf")


def make_cjk():
    font = cut_down(MICROHEI, CJK)
    rename(font, "ZIRK Test CJK", "Regular")
    save(font, "cjk.ttf")


def make_collection():
    collection = TTCollection()
    for family, codes in (("ZIRK Test One", "AB"), ("ZIRK Test Two", "CD")):
        font = cut_down(DEJAVU % "", [ord(c) for c in codes], keep_hints=False)
        rename(font, family, "Regular")
        collection.fonts.append(font)
    collection.save(os.path.join(FOLDER, "collection.ttc"))


make_sans()
make_cjk()
make_collection()
