#!/usr/bin/env python3
"""Finds links that lead nowhere: tests/structure/links.py [SITE]

Looks at the relative links and pictures of all Markdown files in the project, or at those of all
pages in the folder SITE, which Doxygen made. Other people's addresses are not asked. Prints each
link whose file or heading is missing, and ends with 1 if there are any.
"""

import html.parser
import os
import re
import sys
import urllib.parse
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
LEFT_OUT = {"build", "out", ".git"}
LINK = re.compile(r"\]\(([^)\s]+)\)")
CODE = re.compile(r"^```.*?^```|^    .*?$|`[^`\n]*`", re.DOTALL | re.MULTILINE)
HEADING = re.compile(r"^(#+) +(.*)$", re.MULTILINE)


def documents():
    """All Markdown files of the project."""
    return sorted(path for path in PROJECT.rglob("*.md")
                  if LEFT_OUT.isdisjoint(path.relative_to(PROJECT).parts))


def anchors(text):
    """The anchors that a code host makes from the headings of `text`, in their order."""
    seen = {}
    for _, heading in HEADING.findall(text):
        name = re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")
        seen[name] = seen.get(name, -1) + 1
        yield f"{name}-{seen[name]}" if seen[name] else name


class Document:
    """Where the links of one Markdown file lead, and which anchors it has."""

    def __init__(self, path):
        text = re.sub(r"^```.*?^```", "", path.read_text(encoding="utf-8"),
                      flags=re.DOTALL | re.MULTILINE)
        self.links = LINK.findall(CODE.sub("", text))
        self.anchors = set(anchors(text))


class Page(html.parser.HTMLParser):
    """The same of one HTML page."""

    def __init__(self, path):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("href", "src", "data") and value:
                self.links.append(value)
            elif name in ("id", "name") and value:
                self.anchors.add(value)


def leads_nowhere(link, path, files):
    parts = urllib.parse.urlsplit(link)
    # Doxygen 1.9.4 names that section also where all nested classes are private.
    if parts.scheme or parts.netloc or link == "#nested-classes":
        return False
    target = path
    if parts.path:
        target = Path(os.path.normpath(path.parent / urllib.parse.unquote(parts.path)))
    if parts.fragment and target in files:
        return parts.fragment not in files[target].anchors
    return not target.exists()


def main(site):
    if site:
        files = {path: Page(path) for path in sorted(Path(site).resolve().glob("*.html"))}
    else:
        files = {path: Document(path) for path in documents()}
    found = [f"{os.path.relpath(path, PROJECT)}: {link} leads nowhere"
             for path, file in files.items() for link in file.links
             if leads_nowhere(link, path, files)]
    print("\n".join(found))
    print(f"{sum(len(file.links) for file in files.values())} links, {len(found)} lead nowhere")
    return 1 if found or not files else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1] if len(sys.argv) > 1 else None))
