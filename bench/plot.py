#!/usr/bin/env python3
"""Draws time against file size from the figures of the last bench/run.

    plot.py [RESULTS [OUTPUT]]    (default build/bench/results.csv docs/performance.svg)
"""

import csv
import math
import sys

TITLE = "Time to convert a file, by its size"
# Tool in the table: name, colour and marker. Either of the last two is enough to tell them apart.
SERIES = {
    "wc": ("wc -w", "#6b6b6b", "square"),
    "svf": ("tapforge, SVF to SVF", "#1f5fbf", "circle"),
    "ksvf": ("tapforge, SVF to KSVF", "#c2500f", "diamond"),
    "cp": ("cp", "#3d8a3d", "triangle"),
}
PANELS = {"bulk": "one long scan", "rows": "rows of 1024 bits", "statements": "short statements"}
WIDTH, HEIGHT = 860, 430
LEFT, RIGHT, TOP, BOTTOM, GAP = 84, 844, 128, 366, 16


def marker(shape, x, y, colour):
    points = {"square": "-4.5,-4.5 4.5,-4.5 4.5,4.5 -4.5,4.5", "diamond": "0,-6 6,0 0,6 -6,0",
              "triangle": "0,-6 5.5,4.5 -5.5,4.5", "circle": ""}[shape]
    body = f'polygon points="{points}"' if points else 'circle r="5"'
    return f'<{body} transform="translate({x:.1f} {y:.1f})" fill="{colour}" stroke="#fff"/>'


def text(x, y, words, anchor="middle", extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {extra}>{words}</text>'


def line(path, colour, width=1):
    return f'<path d="{path}" fill="none" stroke="{colour}" stroke-width="{width}"/>'


def panel(workload, points, left, right, y_of):
    """One workload; `points` are (tool, bytes, seconds)."""
    sizes = sorted({size for _, size, _ in points})

    def x_of(size):
        part = math.log(size / sizes[0], sizes[-1] / sizes[0])
        return left + (right - left) * (0.1 + 0.8 * part)

    out = [text((left + right) / 2, TOP - 10, PANELS[workload], extra='font-weight="600"')]
    for size in sizes:
        out.append(line(f"M{x_of(size):.1f} {TOP}V{BOTTOM}", "#dededa"))
        out.append(text(x_of(size), BOTTOM + 20, f"{size / 1e6:.2g} MB"))
    for tool, (_, colour, shape) in SERIES.items():
        way = sorted((x_of(size), y_of(spent)) for name, size, spent in points if name == tool)
        out.append(line("M" + "L".join(f"{x:.1f} {y:.1f}" for x, y in way), colour, 2.2))
        out += [marker(shape, x, y, colour) for x, y in way]
    return out


def draw(rows, clock):
    """The SVG; `rows` are (workload, tool, bytes, seconds). It carries its own
    light ground, so that it reads on a dark page too."""
    ticks = [step * 10.0**power for power in range(-4, 3) for step in (1, 2, 5)]
    low = max(tick for tick in ticks if tick <= min(row[3] for row in rows))
    high = min(tick for tick in ticks if tick >= max(row[3] for row in rows))
    width = (RIGHT - LEFT + GAP) / len(PANELS) - GAP

    def y_of(spent):
        return BOTTOM - (BOTTOM - TOP) * math.log(spent / low, high / low)

    out = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}"'
        f' height="{HEIGHT}" font-family="system-ui, sans-serif" font-size="13" fill="#333">',
        f"<title>{TITLE}</title>",
        f'<rect x=".5" y=".5" width="{WIDTH - 1}" height="{HEIGHT - 1}" rx="8" fill="#fdfdfb"'
        ' stroke="#d0d0cc"/>',
        text(LEFT, 34, TITLE, "start", 'font-size="17" font-weight="600" fill="#1a1a1a"'),
        text(LEFT, 54, f"{clock} time of whole processes, medians; both axes logarithmic", "start"),
        text((LEFT + RIGHT) / 2, BOTTOM + 46, "size of the SVF file"),
    ]
    for tick in (tick for tick in ticks if low <= tick <= high):
        for left in (LEFT + i * (width + GAP) for i in range(len(PANELS))):
            out.append(line(f"M{left:.1f} {y_of(tick):.1f}h{width:.1f}", "#dededa"))
        label = f"{tick:g} s" if tick >= 1 else f"{tick * 1e3:g} ms"
        out.append(text(LEFT - 10, y_of(tick) + 4.5, label, "end"))
    for i, workload in enumerate(PANELS):
        left = LEFT + i * (width + GAP)
        points = [row[1:] for row in rows if row[0] == workload]
        out += panel(workload, points, left, left + width, y_of)
    legend = LEFT
    for name, colour, shape in SERIES.values():
        out += [line(f"M{legend} 80h24", colour, 2.2), marker(shape, legend + 12, 80, colour),
                text(legend + 31, 84.5, name, "start")]
        legend += 62 + 6.3 * len(name)
    return "\n".join(out) + "\n</svg>\n"


def main():
    paths = sys.argv[1:] + ["build/bench/results.csv", "docs/performance.svg"][len(sys.argv) - 1:]
    if len(paths) != 2 or paths[0].startswith("-"):
        sys.exit(__doc__)
    with open(paths[0], encoding="ascii", newline="") as file:
        table = list(csv.DictReader(file))
    rows = [(row["workload"], row["tool"], int(row["bytes"]), float(row["seconds"]))
            for row in table if row["tool"] in SERIES]
    if {row[0] for row in rows} != set(PANELS):
        sys.exit(f"{paths[0]} is not of a run of all workloads")
    with open(paths[1], "w", encoding="utf-8") as file:
        file.write(draw(rows, table[0]["clock"]))
    print(f"{paths[1]}, from {paths[0]}")


if __name__ == "__main__":
    main()
