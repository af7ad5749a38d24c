#!/usr/bin/env python3
"""Holds the programs in the public headers to those that are compiled: tests/structure/snippets.py

docs/snippets/NAME.cpp has a part between two lines `//! [snippet]`. The header zirk/NAME.h has the
same lines in a comment. Prints each header that has not, and ends with 1 if there are any.
"""

import re
import sys
import textwrap
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
MARK = re.compile(r"^ *//! \[snippet\]\n", re.MULTILINE)


def main():
    sources = sorted((PROJECT / "docs/snippets").glob("*.cpp"))
    found = []
    for source in sources:
        parts = MARK.split(source.read_text(encoding="utf-8"))
        header = PROJECT / f"include/zirk/{source.stem}.h"
        if len(parts) != 3 or not parts[1].strip():
            found.append(f"{source.relative_to(PROJECT)}: no part between two marks")
            continue
        comment = textwrap.indent(textwrap.dedent(parts[1]), "///     ")
        if comment not in header.read_text(encoding="utf-8"):
            found.append(f"{header.relative_to(PROJECT)}: lacks these lines\n{comment}")
    print("\n".join(found) or f"{len(sources)} headers have the programs that are compiled")
    return 1 if found or not sources else 0


if __name__ == "__main__":
    sys.exit(main())
