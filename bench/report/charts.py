#!/usr/bin/env python3
"""Draws the table of the benchmark as charts: one panel for each work that is compared with the straight
program, with the time of both by the size of the book, on logarithmic axes.

Usage: charts.py TABLE.json CHARTS.svg

TABLE.json is what "bench --json" writes. Exit status: 0; 1 with a sentence when the file cannot be read or
holds nothing to draw.
"""
import html
import json
import math
import sys

COLUMNS = 3
WIDTH, HEIGHT, GAP = 300, 210, 16
LEFT, RIGHT, TOP, BOTTOM = 58, 14, 44, 34  # the room around a panel's axes
MEASURED, REFERENCE, GRID, INK, SOFT = "#0b62c4", "#8a8f98", "#e3e6ea", "#1b1f24", "#5a6270"
TITLES = {"F": "Objective-C", "C": "calculation", "L": "language", "T": "program"}


def duration(seconds):
    for unit, name in ((1, "s"), (1e-3, "ms"), (1e-6, "µs")):
        if seconds >= unit * 0.9999:
            number = seconds / unit
            return f"{number:.3g} {name}" if number < 1000 else f"{number:.0f} {name}"
    return f"{seconds / 1e-9:.3g} ns"


def points_of(row, name):
    """Returns the (people, seconds) of one line, by size of book."""
    return sorted((int(size), value) for size, value in row[name].items())


def decades(low, high):
    """Returns the powers of ten that enclose a span, at least one decade."""
    first, last = math.floor(math.log10(low)), math.ceil(math.log10(high))
    return first, max(last, first + 1)


class Panel:
    """One work: its axes, both lines, and the ratio at each size."""

    def __init__(self, row, left, top, sizes):
        self.row, self.left, self.top = row, left, top
        self.lines = {name: points_of(row, name) for name in ("measured", "reference")}
        times = [time for line in self.lines.values() for _, time in line]
        self.x_span = decades(min(sizes), max(sizes))
        self.y_span = decades(min(times), max(times))

    def x(self, people):
        first, last = self.x_span
        part = (math.log10(people) - first) / (last - first)
        return self.left + LEFT + part * (WIDTH - LEFT - RIGHT)

    def y(self, seconds):
        first, last = self.y_span
        part = (math.log10(seconds) - first) / (last - first)
        return self.top + HEIGHT - BOTTOM - part * (HEIGHT - TOP - BOTTOM)

    def text(self, x, y, words, anchor="start", color=INK, size=11, weight="normal"):
        return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{color}" font-size="{size}" '
                f'font-weight="{weight}">{html.escape(words)}</text>')

    def grid(self):
        for power in range(self.y_span[0], self.y_span[1] + 1):
            y = self.y(10.0 ** power)
            yield f'<path d="M{self.x(10 ** self.x_span[0]):.1f} {y:.1f}H{self.left + WIDTH - RIGHT}" stroke="{GRID}"/>'
            yield self.text(self.left + LEFT - 6, y + 4, duration(10.0 ** power), "end", SOFT, 10)
        for power in range(self.x_span[0], self.x_span[1] + 1):
            yield self.text(self.x(10 ** power), self.top + HEIGHT - BOTTOM + 16, f"{10 ** power:,}", "middle", SOFT, 10)

    def line(self, name, color):
        points = self.lines[name]
        path = "L".join(f"{self.x(size):.1f} {self.y(time):.1f}" for size, time in points)
        yield f'<path d="M{path}" fill="none" stroke="{color}" stroke-width="2"/>'
        for size, time in points:
            yield f'<circle cx="{self.x(size):.1f}" cy="{self.y(time):.1f}" r="3" fill="{color}"/>'

    def draw(self):
        row, limit = self.row, self.row["limit"]
        missed = any(figure > limit for figure in row["figure"].values())
        yield self.text(self.left + LEFT, self.top + 14, row["work"], size=12, weight="bold")
        yield self.text(self.left + LEFT, self.top + 29,
                        f"{TITLES[row['level']]}; target {limit:g}x, {'missed' if missed else 'met'}", color=SOFT)
        yield from self.grid()
        yield from self.line("reference", REFERENCE)
        yield from self.line("measured", MEASURED)
        for place, (size, time) in enumerate(self.lines["measured"]):
            anchor = "start" if place == 0 else "middle"  # beside the names of the axis
            yield self.text(self.x(size), self.y(time) - 7, f"{row['figure'][str(size)]:.1f}x", anchor, MEASURED, 10)


def chart(rows):
    """Returns the SVG of all rows that compare with the straight program."""
    compared = [row for row in rows if row["kind"] == "ratio" and row["level"] != "L"]
    if not compared:
        raise ValueError("there is no work in it that was compared with the straight program")
    sizes = {int(size) for row in compared for size in row["measured"]}
    lines = math.ceil(len(compared) / COLUMNS)
    width = COLUMNS * (WIDTH + GAP) + GAP
    height = lines * (HEIGHT + GAP) + GAP + 24
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
           'font-family="system-ui, Helvetica, Arial, sans-serif">',
           "<title>Time by size of book, each work against the straight program</title>",
           f'<rect width="{width}" height="{height}" fill="#ffffff"/>']
    for x, color, words in ((GAP + LEFT, MEASURED, "the address book"), (GAP + LEFT + 150, REFERENCE, "the straight program")):
        out.append(f'<path d="M{x} 20h24" stroke="{color}" stroke-width="2"/>')
        out.append(f'<text x="{x + 30}" y="24" fill="{INK}" font-size="12">{words}</text>')
    out.append(f'<text x="{width - GAP}" y="24" text-anchor="end" fill="{SOFT}" font-size="12">'
               "time by people in the book</text>")
    for place, row in enumerate(compared):
        left = GAP + place % COLUMNS * (WIDTH + GAP)
        top = GAP + 24 + place // COLUMNS * (HEIGHT + GAP)
        out.extend(Panel(row, left, top, sizes).draw())
    out.append("</svg>\n")
    return "\n".join(out)


def main(arguments):
    if len(arguments) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 1
    table, target = arguments
    try:
        with open(table, encoding="utf-8") as file:
            drawn = chart(json.load(file))
        with open(target, "w", encoding="utf-8") as file:
            file.write(drawn)
    except (OSError, ValueError, KeyError) as error:
        print(f"charts.py: {table}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
