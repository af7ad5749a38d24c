#!/usr/bin/env python3
"""Holds the #include lines of the project to its layers: tests/structure/includes.py

Prints each line that points the wrong way, a circle of files and each exception that is no
longer needed, and ends with 1 if there are any.
"""

import graphlib
import re
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]

# The folders of backends/ from the ground up. Each includes itself and folders of lower levels:
# nothing above it, and none beside it.
LEVELS = [
    ["geometry"],
    ["images", "surface"],
    ["text", "context"],
    ["software", "opengles2", "stub"],
    ["fb", "directfb"],
    ["hybrid"],
]
LEVEL_OF = {folder: level for level, folders in enumerate(LEVELS) for folder in folders}

# Plug-ins share what is in the other folders, not each other; these are made of others.
PLUGINS = {"stub", "opengles2", "fb", "directfb", "hybrid"}
MADE_OF = {"hybrid": {"fb", "opengles2"}}

# Programs include what an application does: <zirk/zirk.h> and the headers that it names, and those
# of the kit. The kit is made as an application is.
PROGRAMS = ["tools/zirkinfo", "tools/zirktrace", "examples", "support", "fuzz", "kit", "include/zirk/kit"]
# These do not know the kit, nor do the headers beside its own.
BELOW_THE_KIT = ("src/", "backends/", "include/")
EXCEPTIONS = {
    # The example of a backend is one.
    ("examples/backend/surface.h", "zirk/backend.h"),
    # zirkinfo opens a compositor, and a third party's plug-in, as the library does.
    ("tools/zirkinfo/plugins.cpp", "zirk/backend.h"),
    # zirktrace records as a plug-in and replays as the library does.
    ("tools/zirktrace/operations.h", "zirk/backend.h"),
    # A program asks the font's atlas for glyphs, which implements the font's interface.
    ("include/zirk/vufontatlas.h", "zirk/impl/vufontimpl.h"),
}

INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]')


def sources():
    """The project's sources by path; those in tests/ and docs/ may include anything."""
    roots = ["src", "include", "backends", "bench", *PROGRAMS]
    paths = [path for root in roots for path in (PROJECT / root).rglob("*")
             if path.suffix in (".h", ".cpp")]
    return {str(path.relative_to(PROJECT)): path.read_text(encoding="utf-8")
            for path in paths if "include/zirk/impl/" not in str(path)}


class Checker:
    def __init__(self, files):
        self.files = files
        self.found = []
        self.used_exceptions = set()
        self.graph = {path: [] for path in files}
        named = re.findall(r"#include <(zirk/[^>]+)>", files["include/zirk/zirk.h"])
        self.application = {"zirk/zirk.h", "zirk/export.h", *named}

    def check(self):
        for path, text in sorted(self.files.items()):
            for number, line in enumerate(text.split("\n"), 1):
                match = INCLUDE.match(line)
                if match:
                    reason = self.fault(path, match[1] == "<", match[2])
                    if reason:
                        self.found.append(f"{path}:{number}: {line.strip()}: {reason}")
        self.find_circle()
        for path, name in sorted(EXCEPTIONS - self.used_exceptions):
            self.found.append(f"{path}: does not include <{name}> any more: drop the exception")
        return self.found

    def fault(self, path, in_angles, name):
        """What is wrong with an include line, if anything is; else enters it in the graph."""
        if in_angles and name.startswith("zirk/"):
            # src/impl is installed as zirk/impl.
            target = re.sub("^include/zirk/impl/", "src/impl/", "include/" + name)
            if target not in self.files:
                return "there is no such header"
            fault = self.fault_of_public(path, name)
        elif in_angles:
            inside = any(f"{root}/{name}" in self.files for root in ("backends", "examples", "kit", "src"))
            return "a file of the project in angle brackets" if inside else None
        else:
            target = self.resolve(path, name)
            if not target:
                return "no file that may be included from here"
            fault = None
            if path.startswith("backends/"):
                fault = self.fault_of_backend(path.split("/")[1], target.split("/")[1])
        if not fault:
            self.graph[path].append(target)
        return fault

    def resolve(self, path, name):
        """The file that a name in quotes stands for, where its folder lets it name one."""
        area, folder = path.split("/")[0], path.rpartition("/")[0]
        roots = {"src": ["src"], "include": [], "support": [], "examples": [folder, "examples"],
                 "bench": [folder, "bench"], "backends": ["backends", folder]}.get(area, [folder])
        names = [f"{root}/{name}" for root in roots]
        if area not in ("src", "include", "backends") and name.startswith("support/"):
            names.append(name)
        if area == "fuzz" and name.startswith("tools/"):
            names.append(name)
        return next((target for target in names if target in self.files), None)

    def fault_of_public(self, path, name):
        is_program = any(path.startswith(root + "/") for root in PROGRAMS)
        if name.startswith("zirk/kit/"):
            is_below = path.startswith(BELOW_THE_KIT) and not is_program
            return "the kit stands on this" if is_below else None
        if name in self.application:
            return None
        is_header = path.replace("include/", "") in self.application
        if not is_header and not is_program:
            return None
        self.used_exceptions.add((path, name))
        if (path, name) in EXCEPTIONS:
            return None
        return ("an application's header includes one for plug-ins" if is_header
                else "no header for applications")

    @staticmethod
    def fault_of_backend(folder, target):
        for name in (folder, target):
            if name not in LEVEL_OF:
                return f"backends/{name} has no level in tests/structure/includes.py"
        if folder == target:
            return None
        if LEVEL_OF[target] >= LEVEL_OF[folder]:
            return f"{target} is not below {folder}"
        if target in PLUGINS and target not in MADE_OF.get(folder, ()):
            return f"{target} is another plug-in"
        return None

    def find_circle(self):
        try:
            graphlib.TopologicalSorter(self.graph).prepare()
        except graphlib.CycleError as error:
            self.found.append("a circle: " + " -> ".join(reversed(error.args[1])))


def main():
    found = Checker(sources()).check()
    print("\n".join(found) or "every include points the right way")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
