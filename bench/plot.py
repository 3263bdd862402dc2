#!/usr/bin/env python3
"""Draws time against file size for tapforge, wc and cp on the bulk workload.

    plot.py [--csv FILE] [OUTPUT]      (default docs/performance.svg)

Measures and writes the table build/bench/performance.csv first, unless --csv
names a table to draw.
"""

import argparse
import csv
import math
import os
import runpy
import sys
import time
from statistics import median

sys.dont_write_bytecode = True
import workloads  # noqa: E402

TITLE = "Time to convert one long SDR, by size of the file"
MEGABYTES = (4, 16, 64, 256)
BYTES_PER_DIGIT = (workloads.LINE_DIGITS + 1) / workloads.LINE_DIGITS
# Series: colour and marker, both different so that either is enough to tell them apart.
SERIES = {
    "wc -w": ("#6b6b6b", "square"),
    "tapforge (SVF to SVF)": ("#1f5fbf", "circle"),
    "tapforge (SVF to KSVF)": ("#c2500f", "diamond"),
    "cp": ("#3d8a3d", "triangle"),
}
WIDTH, HEIGHT = 760, 480
LEFT, RIGHT, TOP, BOTTOM = 96, 736, 104, 416


def measure(program, folder, runs, clock):
    """Rows of series, size in bytes, median seconds on the clock named."""
    bench = runpy.run_path(os.path.join(os.path.dirname(os.path.abspath(__file__)), "run"))
    clocks = {"elapsed": time.perf_counter, "processor": bench["processor_time"]}
    names = dict(zip(("wc", "svf", "ksvf", "cp"), SERIES))
    for size in MEGABYTES:
        scale = size * 1e6 / BYTES_PER_DIGIT / workloads.BULK_DIGITS
        source = workloads.make("bulk", folder, round(scale, 4))
        times = bench["measure"](program, source, None, runs, clocks[clock], ("svf", "ksvf"))
        for name, series in names.items():
            yield series, os.path.getsize(source), round(median(times[name]), 5), clock


def marker(shape, x, y, colour):
    points = {"square": "-4.5,-4.5 4.5,-4.5 4.5,4.5 -4.5,4.5", "diamond": "0,-6 6,0 0,6 -6,0",
              "triangle": "0,-6 5.5,4.5 -5.5,4.5", "circle": ""}[shape]
    body = f'polygon points="{points}"' if points else 'circle r="5"'
    return f'<{body} transform="translate({x:.1f} {y:.1f})" fill="{colour}" stroke="#fff"/>'


def text(x, y, words, anchor="middle", extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {extra}>{words}</text>'


def line(path, colour, width=1):
    return f'<path d="{path}" fill="none" stroke="{colour}" stroke-width="{width}"/>'


def draw(rows, clock):
    """The SVG. It carries its own light ground, so that it reads on a dark page too."""
    sizes = sorted({size for _, size, _ in rows})
    ticks = [step * 10.0**power for power in range(-4, 3) for step in (1, 2, 5)]
    low = max(tick for tick in ticks if tick <= min(row[2] for row in rows))
    high = min(tick for tick in ticks if tick >= max(row[2] for row in rows))

    def x_of(size):
        part = math.log(size / sizes[0], sizes[-1] / sizes[0])
        return LEFT + (RIGHT - LEFT) * (0.06 + 0.88 * part)

    def y_of(spent):
        return BOTTOM - (BOTTOM - TOP) * math.log(spent / low, high / low)

    out = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}"'
        f' height="{HEIGHT}" font-family="system-ui, sans-serif" font-size="13" fill="#333">',
        f"<title>{TITLE}</title>",
        f'<rect x=".5" y=".5" width="{WIDTH - 1}" height="{HEIGHT - 1}" rx="8" fill="#fdfdfb"'
        ' stroke="#d0d0cc"/>',
        text(LEFT, 34, TITLE, "start", 'font-size="17" font-weight="600" fill="#1a1a1a"'),
        text(LEFT, 54, f"{clock} time of whole processes, median; both axes logarithmic", "start"),
        text((LEFT + RIGHT) / 2, BOTTOM + 46, "size of the SVF file"),
        text(26, 260, f"{clock} time", extra='transform="rotate(-90 26 260)"'),
    ]
    for tick in (tick for tick in ticks if low <= tick <= high):
        y = y_of(tick)
        out.append(line(f"M{LEFT} {y:.1f}H{RIGHT}", "#dededa"))
        label = f"{tick:g} s" if tick >= 1 else f"{tick * 1e3:g} ms"
        out.append(text(LEFT - 10, y + 4.5, label, "end"))
    for size in sizes:
        out.append(line(f"M{x_of(size):.1f} {TOP}V{BOTTOM}", "#dededa"))
        out.append(text(x_of(size), BOTTOM + 20, f"{size / 1e6:.0f} MB"))
    legend_x = LEFT
    for series, (colour, shape) in SERIES.items():
        points = sorted((x_of(size), y_of(spent)) for name, size, spent in rows if name == series)
        out.append(line("M" + "L".join(f"{x:.1f} {y:.1f}" for x, y in points), colour, 2.2))
        out.append(line(f"M{legend_x} 80h24", colour, 2.2))
        out += [marker(shape, x, y, colour) for x, y in [*points, (legend_x + 12, 80)]]
        out.append(text(legend_x + 31, 84.5, series, "start"))
        legend_x += 56 + 7.4 * len(series)
    return "\n".join(out) + "\n</svg>\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("output", nargs="?", default="docs/performance.svg")
    parser.add_argument("--csv", help="draw this table instead of measuring")
    parser.add_argument("--program", default="build/release/tapforge")
    parser.add_argument("--folder", default="build/bench")
    parser.add_argument("--runs", type=int, default=7)
    parser.add_argument("--cpu", action="store_true", help="processor time, for a busy machine")
    args = parser.parse_args()
    table = args.csv or os.path.join(args.folder, "performance.csv")
    if not args.csv:
        clock = "processor" if args.cpu else "elapsed"
        rows = list(measure(os.path.abspath(args.program), args.folder, args.runs, clock))
        with open(table, "w", encoding="ascii", newline="") as file:
            csv.writer(file).writerows([("series", "bytes", "seconds", "clock"), *rows])
    with open(table, encoding="ascii", newline="") as file:
        table_rows = list(csv.DictReader(file))
    rows = [(row["series"], int(row["bytes"]), float(row["seconds"])) for row in table_rows]
    os.makedirs(os.path.dirname(args.output) or ".", exist_ok=True)
    with open(args.output, "w", encoding="utf-8") as file:
        file.write(draw(rows, table_rows[0]["clock"]))
    print(f"{args.output}, from {table}")


if __name__ == "__main__":
    main()
