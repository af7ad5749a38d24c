#!/usr/bin/env python3
"""Replays traces by every backend that opens, and prints the processor's time for each and the kind
of operation that takes most of it: what whole programs cost, beside the single operations that the
other benchmarks measure. What it takes to open a context and a screen is left out.

usage: replay.py BIN [TRACE]...

  BIN    the programs of a build, such as build/release/bin
  TRACE  what zirktrace has recorded; the examples are recorded where none is given
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BACKENDS = ("FB", "Hybrid", "OpenGLES2", "DirectFB")
LOOPS = 5  # the least of them counts
ONCE = ("OpenContext", "CreateScreen", "CreateScreenAs")  # for drivers to start, not to draw
# No display takes part.
ENVIRONMENT = {"SDL_VIDEODRIVER": "offscreen", "DFBARGS": "system=dummy",
               "ZIRK_FB_DEVICE": "/nonexistent", **os.environ}


def measure(zirktrace, backend, trace):
    """None for a backend that does not open here."""
    done = subprocess.run([zirktrace, "replay", "--bench", "--json", "--loop", str(LOOPS),
                           "--backend", backend, trace],
                          env=ENVIRONMENT, capture_output=True, text=True)
    return json.loads(done.stdout) if done.returncode == 0 else None


def cell(result):
    """Milliseconds, and the kind of operation that takes most of them."""
    if not result:
        return "-"
    kinds = [kind for kind in result["kinds"] if kind["operation"] not in ONCE]
    milliseconds = sum(kind["processor-ms"] for kind in kinds)
    most = kinds[0]
    return f"{milliseconds:.2f} {most['operation']} {most['processor-ms'] / milliseconds:.0%}"


def compare(zirktrace, traces):
    print(f"{'milliseconds a replay':<24}{'operations':>11}{'frames':>8}"
          + "".join(f"  {backend:<32}" for backend in BACKENDS))
    for trace in traces:
        results = [measure(zirktrace, backend, trace) for backend in BACKENDS]
        known = next((result for result in results if result), None)
        if not known:
            sys.exit(f"{trace}: no backend replays it")
        print(f"{trace.stem:<24}{known['operations']:>11}{known['frames']:>8}"
              + "".join(f"  {cell(result):<32}" for result in results).rstrip(), flush=True)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    programs = pathlib.Path(sys.argv[1])
    traces = [pathlib.Path(trace) for trace in sys.argv[2:]]
    with tempfile.TemporaryDirectory() as folder:
        if not traces:
            # Layers need OpenGL.
            subprocess.run([ROOT / "scripts" / "make-traces", programs, folder])
            traces = sorted(pathlib.Path(folder).glob("*.zirktrace"))
        compare(programs / "zirktrace", traces)


if __name__ == "__main__":
    main()
