#!/usr/bin/env python3
"""Holds docs/code-map.md to the tree: tests/structure/codemap.py

Each row of the table names a file, which exists, and words in backticks, which occur in that file.
Prints the rows of which that is not true, and ends with 1 if there are any.
"""

import re
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
MAP = PROJECT / "docs/code-map.md"


def rows(text):
    """(question, file, names) of each row; rows without a file are headings."""
    for line in text.split("\n"):
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if line.startswith("|") and len(cells) == 3 and cells[1].startswith("`"):
            yield cells[0], cells[1].strip("`"), re.findall("`([^`]+)`", cells[2])


def check(text):
    """What is wrong with the map in `text`."""
    found = []
    for question, file, names in rows(text):
        path = PROJECT / file
        if not path.is_file():
            found.append(f"{question}: there is no {file}")
            continue
        content = path.read_text(encoding="utf-8")
        if not names:
            found.append(f"{question}: no name to look for")
        for name in names:
            if not re.search(rf"(?<!\w){re.escape(name)}(?!\w)", content):
                found.append(f"{question}: {file} has no {name}")
    # Every row of the table is read, but for its head, the line below it and the headings.
    lines = [line for line in text.split("\n") if line.startswith("|")]
    headings = [line for line in lines if re.fullmatch(r"\| (\*\*.*\*\*|question) \|.*", line)]
    if len(list(rows(text))) != len(lines) - len(headings) - 1:
        found.append("a row is not: | question | `file` | `name`, `name` |")
    return found


def main():
    text = MAP.read_text(encoding="utf-8")
    found = check(text)
    count = len(list(rows(text)))
    print("\n".join(found) or f"{count} rows lead where they say")
    return 1 if found or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
