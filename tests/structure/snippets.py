#!/usr/bin/env python3
"""Holds the programs that people read to those that are compiled: tests/structure/snippets.py [--write]

A part of a source stands between two lines `//! [NAME]`.

- The part [snippet] of docs/snippets/NAME.cpp is in a comment of the header zirk/NAME.h.
- In a document, the line `<!-- SOURCE [NAME] -->` stands before the block of code that shows a part,
  and `<!-- SOURCE -->` before one that shows all of a source.
- A document shows no other C++, and nothing that only Doxygen puts in.

Prints each place that differs, and ends with 1 if there are any. --write brings the documents into
line first.
"""

import re
import sys
import textwrap

sys.dont_write_bytecode = True
from links import PROJECT, documents  # noqa: E402

SNIPPETS = PROJECT / "docs/snippets"
MARK = re.compile(r"^ *//! \[(\w+)\]\n", re.MULTILINE)
BLOCK = re.compile(r"^(?:<!-- (?P<source>[\w./-]+\.(?:cpp|h))(?: \[(?P<part>\w+)\])? -->\n)?"
                   r"```cpp\n(?P<code>.*?)^```\n", re.MULTILINE | re.DOTALL)
COMMAND = re.compile(r"(?<!\w)[@\\](?:include|snippet|ref|dontinclude|page)\b")


def read(path):
    return path.read_text(encoding="utf-8") if path.is_file() else ""


def part(source, name):
    """The lines of a part of `source`, or of all of it. None if there are none."""
    pieces = MARK.split(read(PROJECT / source))
    inside = pieces[2::4] if name else ["".join(pieces[::2])]
    names = pieces[1::4] if name else [None]
    text = dict(zip(names, inside)).get(name)
    return textwrap.dedent(text) if text and text.strip() else None


def header_faults(source, shown):
    """Headers show [snippet]; every other part is for a document."""
    name = source.relative_to(PROJECT).as_posix()
    for piece in set(MARK.findall(read(source))) - {"snippet"}:
        if (name, piece) not in shown:
            yield f"{name}: no document shows [{piece}]"
    if "//! [snippet]" in read(source):
        header = PROJECT / "include/zirk" / source.relative_to(SNIPPETS).with_suffix(".h")
        comment = textwrap.indent(part(name, "snippet") or "", "///     ")
        if not comment or comment not in read(header):
            yield f"{header.relative_to(PROJECT)}: lacks these lines\n{comment}"


def document_faults(name, text, shown):
    for command in COMMAND.finditer(re.sub(r"`[^`\n]*`", "", text)):
        yield f"{name}: {command[0]}"
    for block in BLOCK.finditer(text):
        source = block["source"]
        shown.add((source, block["part"]))
        if not source:
            yield f"{name}: no line before this block names its source\n{block['code']}"
        elif part(source, block["part"]) != block["code"]:
            yield f"{name}: differs from {source} {block['part'] or ''}"


def renewed(block):
    code = part(block["source"], block["part"]) if block["source"] else None
    return block[0].replace(f"```cpp\n{block['code']}", f"```cpp\n{code}") if code else block[0]


def main(write):
    found, shown = [], set()
    for path in documents():
        text = read(path)
        if write and BLOCK.sub(renewed, text) != text:
            text = BLOCK.sub(renewed, text)
            path.write_text(text, encoding="utf-8")
        found += document_faults(path.relative_to(PROJECT).as_posix(), text, shown)
    sources = sorted(SNIPPETS.rglob("*.cpp"))
    for source in sources:
        found += header_faults(source, shown)
    print("\n".join(found) or f"{len(sources)} sources and {len(shown)} blocks agree")
    return 1 if found or not sources or not shown else 0


if __name__ == "__main__":
    sys.exit(main("--write" in sys.argv[1:]))
