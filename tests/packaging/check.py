#!/usr/bin/python3
"""Holds the recipes in packaging/ to the project: check.py WORK

Licence, version and options agree, and what a board's configuration asks for can be configured.
Neither Buildroot nor BitBake is needed: their parts that matter here are stood in for.
"""

import hashlib
import os
import re
import subprocess
import sys
from pathlib import Path

try:
    os.environ["CONFIG_"] = ""  # Buildroot's names have no prefix.
    import kconfiglib
except ImportError:
    sys.exit(77)  # Skipped.

PROJECT = Path(__file__).resolve().parents[2]
BUILDROOT = PROJECT / "packaging/buildroot"
PACKAGE = BUILDROOT / "package/zirk"
RECIPE = next((PROJECT / "packaging/yocto/meta-zirk").glob("recipes-*/zirk/zirk_*.bb"))

# Prints what zirk.mk hands to CMake, and what is built before.
HARNESS = """
cmake-package = $(info $(ZIRK_CONF_OPTS))$(info $(sort $(ZIRK_DEPENDENCIES)))
BR2_EXTERNAL_ZIRK_PATH = {buildroot}
include {config}
include {buildroot}/external.mk
all: ;
"""


def buildroot(work, choose):
    """What the package asks of CMake and of other packages, where `choose` sets its options."""
    text = (PACKAGE / "Config.in").read_text()
    others = sorted(set(re.findall(r"\bBR2_\w+", text)) - set(re.findall(r"^config (\w+)", text, re.M)))
    named = "".join(f'config {name}\n\tbool "{name}"\n' for name in others)
    (work / "Kconfig").write_text(f'{named}source "{PACKAGE}/Config.in"\n')
    kconfig = kconfiglib.Kconfig(str(work / "Kconfig"))
    assert not kconfig.warnings, kconfig.warnings
    for name in others:
        kconfig.syms[name].set_value("n" if name == "BR2_STATIC_LIBS" else "y")
    for symbol in kconfig.unique_defined_syms:
        if symbol.name not in others:
            symbol.set_value(choose(symbol.name))
    kconfig.write_config(str(work / "config"), save_old=False)
    harness = work / "harness.mk"
    harness.write_text(HARNESS.format(buildroot=BUILDROOT, config=work / "config"))
    said = subprocess.check_output(["make", "-s", "-f", harness], text=True).splitlines()
    return said[0].split(), said[1].split()


def configure(work, options):
    """The options that CMake has then."""
    command = ["cmake", "-S", PROJECT, "-B", work / "build", "--fresh", *options]
    run = subprocess.run(command, capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    assert "not used by the project" not in run.stderr, run.stderr
    cache = (work / "build/CMakeCache.txt").read_text()
    return dict(re.findall(r"^(ZIRK_(?:BACKEND|IMAGE|KIT)_\w+|ZIRK_BUILD_(?:KIT|TOOLS|TRACE)):\w+=(\w+)$", cache, re.M))


def main():
    work = Path(sys.argv[1])
    work.mkdir(parents=True, exist_ok=True)
    licence, recipe = (PROJECT / "LICENSE").read_bytes(), RECIPE.read_text()
    assert hashlib.sha256(licence).hexdigest() in (PACKAGE / "zirk.hash").read_text()
    assert hashlib.md5(licence).hexdigest() in recipe
    version = re.search(r"VERSION ([\d.]+) LANG", (PROJECT / "CMakeLists.txt").read_text())[1]
    assert f"ZIRK_VERSION = {version}\n" in (PACKAGE / "zirk.mk").read_text()
    assert RECIPE.name == f"zirk_{version}.bb"

    everything, needed = buildroot(work, lambda name: "y")
    chosen = configure(work, everything)
    assert set(chosen.values()) == {"ON"}, chosen
    assert {"sdl2", "directfb", "webp", "jpeg-turbo"} < set(needed), needed
    least = ("BR2_PACKAGE_ZIRK", "BR2_PACKAGE_ZIRK_STUB")
    little, needed = buildroot(work, lambda name: "y" if name in least else "n")
    chosen = configure(work, little)
    assert [name for name in chosen if chosen[name] == "ON"] == ["ZIRK_BACKEND_STUB"], chosen
    assert needed == ["freetype", "host-pkgconf"], needed

    for name in chosen:
        assert f'"-D{name}=ON,-D{name}=OFF' in recipe, f"{name} is missing in {RECIPE.name}"
    assert set(re.findall(r"-D(ZIRK_\w+)=ON", recipe)) == set(chosen), "options nobody knows"
    # Names of more words are parts of a backend.
    backends = {name.lower() for name in re.findall(r"\bZIRK_BACKEND_([^_ ]+)\b", " ".join(chosen))}
    filtered = re.search(r"filter\('PACKAGECONFIG', '([a-z\d ]+)'", recipe)[1].split()
    assert set(filtered) == set(re.findall(r"^FILES:\$\{PN\}-backend-(\w+)", recipe, re.M)) == backends


if __name__ == "__main__":
    main()
