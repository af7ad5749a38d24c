#!/usr/bin/env python3
"""Holds the public headers to their comments: tests/structure/comments.py

Every public declaration has a comment of its own, as Clang, and so an editor, attaches it. Not
looked at are destructors, what is defaulted or deleted, and overriding functions, which an editor
explains by what they override. Prints each bare declaration and ends with 1 if there are any; with
77 where there is no clang++.
"""

import json
import re
import shutil
import subprocess
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
INCLUDE = PROJECT / "include"

SCOPES = {"NamespaceDecl", "LinkageSpecDecl", "CXXRecordDecl", "EnumDecl", "ClassTemplateDecl",
          "FunctionTemplateDecl"}
DECLARATIONS = SCOPES - {"NamespaceDecl", "LinkageSpecDecl"} | {
    "FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXConversionDecl", "FieldDecl",
    "VarDecl", "EnumConstantDecl", "TypedefDecl", "TypeAliasDecl"}
# Below a minimum the checker would have read next to nothing.
FEWEST = 400


def headers():
    """As they are included, src/impl through the folder that it is installed as."""
    roots = {"zirk": INCLUDE / "zirk", "zirk/impl": PROJECT / "src/impl"}
    for prefix, root in roots.items():
        for path in sorted(root.rglob("*.h")):
            if "impl" not in path.relative_to(root).parts:
                yield f"{prefix}/{path.relative_to(root)}"


def parse(text):
    """The trees of all that Clang finds in the project's namespace."""
    flags = subprocess.run(["pkg-config", "--cflags", "freetype2"], capture_output=True, text=True,
                           check=False).stdout.split()
    dump = subprocess.run(
        ["clang++", "-std=c++17", "-x", "c++", "-", "-fsyntax-only", f"-I{INCLUDE}", *flags,
         "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=ZIRK"],
        input=text, stdout=subprocess.PIPE, text=True, check=True).stdout
    decoder, at = json.JSONDecoder(), 0
    while match := re.compile(r"\s*(?=\{)").match(dump, at):
        tree, at = decoder.raw_decode(dump, match.end())
        yield tree


class Checker:
    def __init__(self):
        self.place = {"file": "", "line": 0}  # Clang names a file and a line where they change.
        self.bare = set()
        self.count = 0

    def check(self, node, hidden=False, is_pattern=False):
        """Looks at `node` and what is in it. `is_pattern`: its template was looked at already."""
        place = self.follow(node)
        kind, inner = node.get("kind", ""), node.get("inner", [])
        hidden = hidden or self.is_left_out(node)
        is_template = kind.endswith("TemplateDecl")
        if kind in DECLARATIONS and not hidden and not is_pattern:
            self.count += 1
            # Clang attaches a template's comment to the template or to its pattern.
            attached = inner + [c for child in inner if is_template for c in child.get("inner", [])]
            if not any(child.get("kind") == "FullComment" for child in attached):
                self.bare.add(f"{place}: {node.get('name', kind)}")
        access = "private" if node.get("tagUsed") == "class" else "public"
        has_pattern = False
        for child in inner:
            if child.get("kind") == "AccessSpecDecl":
                access = child["access"]
            # The declarations after the pattern of a template are its instances.
            is_instance = is_template and has_pattern
            self.check(child, hidden or access == "private" or is_instance or kind not in SCOPES,
                       is_template)
            has_pattern = has_pattern or child.get("kind") in DECLARATIONS

    def follow(self, node):
        """Where `node` is. Clang's locations are read in its order."""
        self.read(node.get("loc", {}))
        place = f"{self.place['file'].replace(f'{PROJECT}/', '')}:{self.place['line']}"
        for end in ("begin", "end"):
            self.read(node.get("range", {}).get(end, {}))
        return place

    def read(self, location):
        for part in (location.get("spellingLoc"), location.get("expansionLoc"), location):
            for key in self.place:
                self.place[key] = (part or {}).get(key, self.place[key])

    @staticmethod
    def is_left_out(node):
        overrides = any(c.get("kind") == "OverrideAttr" for c in node.get("inner", []))
        kind = node.get("kind")
        if kind in ("CXXRecordDecl", "ClassTemplateDecl"):
            records = [node, *node.get("inner", [])]
            return not any(record.get("completeDefinition") for record in records)
        return bool(overrides or node.get("isImplicit") or node.get("explicitlyDefaulted") or
                    node.get("explicitlyDeleted") or kind == "FriendDecl" or
                    kind != "NamespaceDecl" and "previousDecl" in node)


def main():
    if not shutil.which("clang++"):
        print("no clang++")
        return 77
    checker = Checker()
    for tree in parse("".join(f"#include <{header}>\n" for header in headers())):
        checker.check(tree)
    print("\n".join(sorted(checker.bare)))
    print(f"{len(checker.bare)} of {checker.count} public declarations have no comment")
    return 1 if checker.bare or checker.count < FEWEST else 0


if __name__ == "__main__":
    sys.exit(main())
