#!/usr/bin/python3
"""Shows the showcase on emulated devices and compares what is seen: device_tests.py [MACHINE]"""

import base64
import functools
import gzip
import io
import re
import sys
import time
from dataclasses import dataclass

from PIL import Image, ImageChops, ImageStat

from machine import MACHINES, PROJECT, Failure, Machine

RESULTS = PROJECT / "build/device/results"

SIZE = (1280, 720)  # Of displays whose size can be chosen.


@dataclass
class DeviceTest:
    machine: str
    backend: str
    environment: str = ""
    size: tuple = SIZE  # While the console uses the display.
    mode: str = ""  # Set first: width, height, bits and pages; if empty, the machine's own.
    shown_at: str = ""  # The mode while the picture is shown; not tested if empty.
    shown_on: str = ""  # The device that is open while the picture is shown; not tested if empty.
    worst: int = 0  # The largest difference of a channel allowed, and the largest mean.
    mean: float = 0.0
    turned: int = 0  # Clockwise rotation in degrees.
    top: int = 0  # The picture's first row on the display.
    keeps_colours: bool = True  # Whether the console has its own colours again afterwards.


# A display of 16 bits drops up to 7 of 255 from red and blue, and 3 from green.
RGB565 = {"worst": 7, "mean": 4.0}
# The driver rounds in its own way, the same as in the tests' pictures.
OPENGL = {"worst": 8, "mean": 0.6}

# DirectFB would keep the console, and its driver omap crashes without that hardware.
DIRECTFB = "DFBARGS=system=fbdev,no-vt,disable-module=omap"

TESTS = [
    # The kernel's display by KMS, as FB finds it; rotated for an upright panel; and by fbdev.
    DeviceTest("virtio", "FB", shown_on="/dev/dri/card0"),
    DeviceTest("virtio", "FB", "ZIRK_FB_ROTATE=90", size=(720, 1280), turned=90),
    DeviceTest("virtio", "FB", "ZIRK_FB_DEVICE=/dev/fb0", shown_on="/dev/fb0"),
    # SDL would draw by the processor here.
    DeviceTest("virtio", "Hybrid", shown_on="/dev/dri/card0"),
    DeviceTest("pc", "FB", shown_on="/dev/dri/card0"),
    DeviceTest("cirrus", "FB", size=(1024, 768), shown_on="/dev/dri/card0", **RGB565),
    # In its own mode, 1280 x 768, between bars.
    DeviceTest("virtio", "OpenGLES2", "SDL_VIDEODRIVER=KMSDRM", size=(1024, 768), top=24, **OPENGL),
    DeviceTest("virtio", "Hybrid", "SDL_VIDEODRIVER=KMSDRM", **OPENGL),
    DeviceTest("virtio", "DirectFB", DIRECTFB, worst=2, mean=0.05),
    DeviceTest("board", "FB", **RGB565),
    # Draws in 16 bits, so each blending loses precision. Nothing restores the palette that DirectFB
    # sets if the driver has one.
    DeviceTest("board", "DirectFB", DIRECTFB, worst=28, mean=4.5, keeps_colours=False),
    # From 8 bits, which have no true colours, to the screen's own mode.
    DeviceTest("memory", "FB"),
    DeviceTest("memory", "FB", mode="1280 720 32 2", shown_at="at 0,720"),
    DeviceTest("memory", "FB", mode="1280 720 16 1", **RGB565),
]


def photograph(machine, probe, test):
    if test.machine != "memory":
        return machine.screen()
    text = machine.run(f"{probe} read | gzip -1 | base64")
    with Image.open(io.BytesIO(gzip.decompress(base64.b64decode(text)))) as picture:
        return picture.convert("RGB")


def console(machine, test):
    """The console's picture, after it has been written to anew."""
    if test.machine == "memory":
        return None
    machine.run(r"printf '\033[2J\033[HThe console of the device\n' > /dev/tty0")
    picture = machine.screen()
    return picture if test.keeps_colours else picture.convert("L").point(lambda value: value > 0)


def compare(seen, test):
    with Image.open(PROJECT / "docs/showcase.png") as golden:
        golden = golden.convert("RGB").rotate(-test.turned, expand=True)
        seen = seen.crop((0, test.top, seen.width, seen.height))
        common = (0, 0, min(golden.width, seen.width), min(golden.height, seen.height))
        difference = ImageChops.difference(golden.crop(common), seen.crop(common))
    worst = max(high for _, high in difference.getextrema())
    mean = max(ImageStat.Stat(difference).mean)
    if worst > test.worst or mean > test.mean:
        raise Failure(f"the picture differs by up to {worst}, on average by {mean:.2f}")
    return f"differs by up to {worst}, on average by {mean:.2f}"


def show(machine, test, picture):
    """Has the showcase shown, and says how far the screen's picture is from the golden one."""
    programs = machine.programs
    probe = programs / "zirk_framebuffer_probe"
    if test.mode:
        machine.run(f"{probe} set {test.mode}")
    mode, before = machine.run(f"{probe} mode"), console(machine, test)
    # The program waits for a line from a pipe, so that the shell stays free.
    machine.run("rm -f /tmp/pipe; mkfifo /tmp/pipe")
    showcase = f"{test.environment} {programs}/showcase /tmp/showcase.png {test.backend} wait"
    machine.run(f"{{ {showcase} <>/tmp/pipe; echo ENDED $?; }} & shown=$!", until="shown")
    seen = photograph(machine, probe, test)
    seen.save(picture)
    shown_at = machine.run(f"{probe} mode")
    devices = machine.run("ls -l /proc/[0-9]*/fd 2> /dev/null || true")
    machine.run("echo > /tmp/pipe; wait $shown")
    if test.shown_at not in shown_at:
        raise Failure(f"shown with the mode {shown_at.strip()}")
    if f"-> {test.shown_on}" not in devices:
        raise Failure(f"{test.shown_on} is not open")
    after = machine.run(f"{probe} mode")
    if after != mode:
        raise Failure(f"the mode was {mode.strip()} and is {after.strip()}")
    if before and ImageChops.difference(before, console(machine, test)).getbbox():
        raise Failure("the console does not look as before")
    return compare(seen, test)


def measure(machine):
    """How much memory a program takes, which QEMU's user emulation cannot tell."""
    font = PROJECT / "tests/fonts/sans.ttf"
    page, freetype = (machine.programs / f"zirk_memory_{name}" for name in ("page", "freetype"))
    return machine.run(f"{page} {freetype} {font} 2> /dev/null").strip()


def refresh(machine):
    """Whether FB keeps to the vertical blanks, on RGB565, as another program sees the card."""
    probe = machine.programs / "zirk_card_probe"
    machine.run("rm -f /tmp/pipe; mkfifo /tmp/pipe")
    machine.run(f"{probe} show <>/tmp/pipe >/tmp/rate 2>/dev/null & sleep 1")
    seen = [machine.run(f"{probe} read && sleep 1") for _ in range(2)]
    rate = machine.run("sleep 3; echo > /tmp/pipe; wait; cat /tmp/rate")
    first, second = (re.fullmatch(r"frame (\d+), 16 bits, f800 001f\n", text) for text in seen)
    if not first or not second:
        raise Failure(f"another program sees {seen}")
    if int(second[1]) <= int(first[1]):
        raise Failure(f"the frames do not rise: {seen}")
    if not 58 <= int(rate.split()[0]) <= 62:
        raise Failure(rate.strip())
    return f"{rate.strip()}, from {first[1]} to {second[1]}"


def touch(machine, degrees):
    """Whether the example draws where it is touched, and ends on Escape."""
    environment = f"ZIRK_DEFAULT_GFX_BACKEND=FB ZIRK_FB_ROTATE={degrees}"
    program = f"{environment} {machine.programs}/07-input 2>/dev/null"
    machine.run(f"{{ {program}; echo ENDED $?; }} & sleep 1")
    machine.run("until ls -l /proc/[0-9]*/fd 2>/dev/null | grep -q /dev/input; do sleep 1; done")
    # Along a line of the panel, in units of 1/32767.
    for x, y, down in ((8192, 8192, True), (16384, 8192, True), (16384, 8192, False)):
        machine.input("abs", axis="x", value=x)
        machine.input("abs", axis="y", value=y)
        machine.input("btn", button="left", down=down)
    seen = machine.screen()
    for down in (True, False):
        machine.input("key", key={"type": "qcode", "data": "esc"}, down=down)
    machine.run("wait", until="ENDED 0")
    stroke, paper = (seen.getpixel((SIZE[0] * 3 // 8, SIZE[1] // n)) for n in (4, 2))
    if (stroke, paper) != ((0x2E, 0x6F, 0xB0), (0xF4, 0xEF, 0xE4)):
        raise Failure(f"touched there is {stroke}, elsewhere {paper}")
    return "draws where it is touched"


def attempt(name, kind, size, do):
    """Whether what is done on a machine succeeds."""
    start = time.monotonic()
    try:
        with Machine(kind, RESULTS / f"{name}.log", size) as machine:
            said, succeeds = do(machine), True
    except Failure as failure:
        said, succeeds = failure, False
    verdict = "ok" if succeeds else "FAILED"
    print(f"{name:24} {time.monotonic() - start:4.0f} s  {verdict}: {said}", flush=True)
    return succeeds


def main():
    # Its driver needs a download of 150 MB.
    wanted = sys.argv[1:] or [machine for machine in MACHINES if machine != "vkms"]
    RESULTS.mkdir(parents=True, exist_ok=True)
    succeed = []
    for number, test in enumerate(TESTS, 1):
        if test.machine in wanted:
            name = f"{number}-{test.machine}-{test.backend}"
            do = functools.partial(show, test=test, picture=RESULTS / f"{name}.png")
            succeed.append(attempt(name, test.machine, test.size, do))
    if "board" in wanted:
        succeed.append(attempt("memory-of-a-page", "board", SIZE, measure))
    for degrees in (0, 90) if "pc" in wanted else ():
        do = functools.partial(touch, degrees=degrees)
        succeed.append(attempt(f"touch-turned-by-{degrees}", "pc", SIZE, do))
    if "vkms" in wanted:
        succeed.append(attempt("refresh", "vkms", SIZE, refresh))
    print(f"pictures and logs: {RESULTS}")
    return 0 if all(succeed) else 1


if __name__ == "__main__":
    sys.exit(main())
