#!/usr/bin/env python3
"""Runs zirk_bench and prints this library's speed as ratios to its peers of the same run.

usage: compare.py path/to/zirk_bench [benchmark options]
"""

import collections
import json
import statistics
import subprocess
import sys
import tempfile

OURS = "ZIRK"
# Operation, peer: how many times as fast this library means to be.
TARGETS = {
    ("FillOpaque", "memset"): 0.9,
    ("FillRect8", "Cairo"): 5,
    ("BlitAlpha16", "Cairo"): 2.5,
    ("BlitTinted64", "Cairo"): 8,
    ("Line100", "Cairo"): 4,
    ("RoundedRect", "Cairo"): 5,
    ("Disc32", "Cairo"): 5,
    ("Gradient200", "blit"): 0.67,
    ("TextMeasure", "FreeType"): 100,
    ("TextMeasure", "Cairo"): 5,
    ("TextMeasure", "SDL_ttf"): 5,
    ("TextMeasure", "DirectFB"): 2,
    ("TextDraw", "Pixman"): 1.5,
    ("TextDraw", "Cairo"): 2,
    ("TextDraw", "SDL_ttf"): 5,
    ("TextOpen", "FreeType"): 0.91,
    ("TextWrap", "Pango"): 10,
}
# Operations in which it means to be level with the best peer, within what runs differ by.
LEVEL = ("FillRect200Half", "BlitOpaque64", "BlitAlpha64", "Mask", "MaskBlit", "ScaleBilinear",
         "Rotate128", "ScaleTwice", "OpaqueOn565", "AlphaOn565", "UiFrame")
LEVEL_RATIO = 0.95
# What is no library of others.
NO_PEERS = ("memset", "memcpy", "blit", "ZIRK on DirectFB")
FRONT_END_LIMIT = 2  # nanoseconds
PACKER_RULE = "ShortSide"  # the one that atlases use
PACKER_LIMIT = 30  # milliseconds
CACHE_LIMIT = 300  # bytes a glyph


def measure(binary, options):
    """The least disturbed result by operation and variant, in the order in which they are
    registered."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run(
            [binary, "--benchmark_repetitions=9", "--benchmark_min_time=0.03",
             "--benchmark_enable_random_interleaving=true",
             "--benchmark_out_format=json", f"--benchmark_out={out.name}", *options],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        runs = json.load(out)["benchmarks"]
    failed = [run["run_name"] for run in runs if run.get("error_occurred")]
    if failed:
        sys.exit("failed: " + ", ".join(failed))
    groups = collections.defaultdict(dict)
    for run in sorted(runs, key=lambda run: run["family_index"]):
        if run["run_type"] != "iteration":
            continue
        operation, variant = run["run_name"].split("/")[:2]
        best = groups[operation].get(variant)
        if best is None or cost(run) < cost(best):
            groups[operation][variant] = run
    return groups


def cost(run):
    """Of an item in cycles where they were counted, else of an iteration in CPU time."""
    return run.get("cycles", run["cpu_time"])


def speed(run):
    """Items in a million cycles, or in a second."""
    return 1e6 / run["cycles"] if "cycles" in run else run["items_per_second"]


def print_operations(groups, title="Drawing: items"):
    groups = {name: runs for name, runs in groups.items() if OURS in runs and len(runs) > 1}
    peers = list(dict.fromkeys(peer for runs in groups.values() for peer in runs if peer != OURS))
    counted = any("cycles" in runs[OURS] for runs in groups.values())
    unit = "a million cycles" if counted else "a second of CPU time"
    print(f"\n{title} in {unit}, and how many times as many as each peer")
    print(f"{'operation':<17}{'items':>12}{'instr.':>8}{'alloc.':>8}"
          + "".join(f"{peer:>9}" for peer in peers) + "   best peer  target")
    least = []
    for operation, runs in groups.items():
        ours = runs[OURS]
        ratios = {peer: speed(ours) / speed(run)
                  for peer, run in runs.items() if peer != OURS}
        instructions = f"{ours['instructions']:.0f}" if "instructions" in ours else "-"
        line = f"{operation:<17}{speed(ours):>12.0f}{instructions:>8}{ours['allocations']:>8.2g}"
        line += "".join(f"{ratios[peer]:>9.2f}" if peer in ratios else f"{'-':>9}" for peer in peers)
        others = [peer for peer in ratios if peer not in NO_PEERS]
        best = min(others, key=ratios.get, default=None)
        least += [ratios[best]] if best else []
        line += f"   {best or '-':<9}"
        for (name, peer), target in TARGETS.items():
            if name == operation and peer in ratios:
                verdict = "met" if ratios[peer] >= target else "MISSED"
                line += f"  {target} x {peer}: {verdict}"
        if operation in LEVEL:
            line += "  level: " + ("met" if ratios[best] >= LEVEL_RATIO else "MISSED")
        print(line)
    if least:
        print(f"Geometric mean of the ratios to the best peers: {statistics.geometric_mean(least):.2f}")


def print_front_end(groups):
    print("\nFront end: nanoseconds a call, and what goes to the front end")
    for operation, runs in groups.items():
        through, direct = (runs[way]["cpu_time"] for way in ("VuBitmap", "direct"))
        verdict = "met" if through - direct <= FRONT_END_LIMIT else "MISSED"
        print(f"{operation[8:]:<17}{through:7.2f}{direct:7.2f}{through - direct:7.2f}"
              f"  at most {FRONT_END_LIMIT}: {verdict}")


def print_geometry(groups):
    print("\nGeometry: nanoseconds by kind of matrix, and how many times as fast as full arithmetic")
    for operation, runs in groups.items():
        full = runs["full"]["cpu_time"]
        cells = (f"{kind} {run['cpu_time']:.2f} ({full / run['cpu_time']:.1f}x)"
                 for kind, run in runs.items() if kind != "full")
        print(f"{operation[8:]:<17}" + "  ".join(cells) + f"  full {full:.2f}")


def print_text(groups):
    print_operations(groups, "Text: lines of 40 characters, fonts opened, or paragraphs broken into lines,")
    threads = groups.get("TextThreads")
    if threads:
        one, eight = (threads[count]["items_per_second"] for count in ("one", "eight"))
        verdict = "met" if eight >= one else "MISSED"
        print(f"Eight threads measure with one font {eight / one:.2f} times as many lines as one"
              f"  at least 1: {verdict}")
    if "TextCache" in groups:
        size = groups["TextCache"][OURS]["bytes"]
        verdict = "met" if size <= CACHE_LIMIT else "MISSED"
        print(f"A cached glyph takes {size:.0f} bytes  at most {CACHE_LIMIT}: {verdict}")


def print_packer(groups):
    print("\nPacker: milliseconds for 2000 rectangles of a glyph's size, by rule")
    for runs in groups.values():
        for rule, run in runs.items():
            line = f"{rule:<17}{run['cpu_time']:7.2f}"
            if rule == PACKER_RULE:
                verdict = "met" if run["cpu_time"] <= PACKER_LIMIT else "MISSED"
                line += f"  at most {PACKER_LIMIT}: {verdict}"
            print(line)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    groups = measure(sys.argv[1], sys.argv[2:])
    sections = {"FrontEnd": print_front_end, "Geometry": print_geometry, "Text": print_text,
                "Packer": print_packer, "": print_operations}
    for prefix in ("", "Text", "FrontEnd", "Geometry", "Packer"):
        chosen = {name: runs for name, runs in groups.items()
                  if next(p for p in sections if name.startswith(p)) == prefix}
        if chosen:
            sections[prefix](chosen)


if __name__ == "__main__":
    main()
