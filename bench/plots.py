#!/usr/bin/env python3
"""Draws what bench/steps.py measured: the cost of a step over the size of the plant, both in powers of ten.

    bench/steps.py --before OTHER/itms --json steps.json
    bench/plots.py steps.json FOLDER      writes FOLDER/step-cost-PLANT.svg, one for each plant

A curve of a colour is a kind of step; it is dashed for the build before.
"""

import json
import math
import sys

WIDTH, HEIGHT = 590, 360
LEFT, RIGHT, TOP, BOTTOM = 70, 160, 36, 48
COLOURS = {"quiet": "#0072b2", "reading": "#009e73", "fault": "#d55e00", "repair": "#cc79a7"}
WORDS = {"quiet": "nothing reported", "reading": "one reading", "fault": "one fault", "repair": "one repair"}
UNITS = [(1, "µs"), (1e3, "ms"), (1e6, "s")]


class Axis:
    """Whole powers of ten around some values, on a stretch of the picture."""

    def __init__(self, values, begin, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(self.low + 1, math.ceil(math.log10(max(values))))
        self.begin, self.end = begin, end

    def place(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.begin + share * (self.end - self.begin)

    def ticks(self):
        return [10.0**power for power in range(self.low, self.high + 1)]


def duration(microseconds):
    factor, unit = next(one for one in reversed(UNITS) if microseconds >= one[0] or one is UNITS[0])
    return f"{microseconds / factor:g} {unit}"


def text(x, y, words, anchor="middle", **attributes):
    more = "".join(f' {name.replace("_", "-")}="{value}"' for name, value in attributes.items())
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>{words}</text>'


def grid(across, up):
    for size in across.ticks():
        x = across.place(size)
        yield f'<line x1="{x:.1f}" y1="{up.begin}" x2="{x:.1f}" y2="{up.end}" stroke="#ddd"/>'
        yield text(x, up.begin + 18, f"{size:,.0f}")
    for cost in up.ticks():
        y = up.place(cost)
        yield f'<line x1="{across.begin}" y1="{y:.1f}" x2="{across.end}" y2="{y:.1f}" stroke="#ddd"/>'
        yield text(across.begin - 8, y + 4, duration(cost), "end")
    yield text((across.begin + across.end) / 2, HEIGHT - 8, "components")


def curve(points, across, up, colour, dashed):
    places = [f"{across.place(size):.1f},{up.place(cost):.1f}" for size, cost in points]
    dash = ' stroke-dasharray="5 4"' if dashed else ""
    yield f'<polyline points="{" ".join(places)}" fill="none" stroke="{colour}" stroke-width="2"{dash}/>'
    for place in places:
        x, y = place.split(",")
        yield f'<circle cx="{x}" cy="{y}" r="3" fill="{"#fff" if dashed else colour}" stroke="{colour}"/>'


def legend(kinds, x, hasBefore):
    y = TOP + 8
    for kind in kinds:
        yield f'<line x1="{x}" y1="{y}" x2="{x + 20}" y2="{y}" stroke="{COLOURS[kind]}" stroke-width="2"/>'
        yield text(x + 26, y + 4, WORDS[kind], "start")
        y += 20
    if hasBefore:
        yield f'<line x1="{x}" y1="{y}" x2="{x + 20}" y2="{y}" stroke="#555" stroke-width="2" stroke-dasharray="5 4"/>'
        yield text(x + 26, y + 4, "before", "start")


def drawing(plant, rows):
    """What a difference of two runs makes nothing or less of is too little to be seen, and is left out."""
    seen = {}
    for row in rows:
        for field in ("microseconds", "microsecondsBefore"):
            if row.get(field, 0) > 0:
                seen.setdefault((row["kind"], field), []).append((row["components"], row[field]))
    points = [point for curve_points in seen.values() for point in curve_points]
    across = Axis([size for size, _ in points], LEFT, WIDTH - RIGHT)
    up = Axis([cost for _, cost in points], HEIGHT - BOTTOM, TOP)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" height="{HEIGHT}" '
           'font-family="sans-serif" font-size="12" fill="#222">')
    yield f'<rect width="{WIDTH}" height="{HEIGHT}" fill="#fff"/>'
    yield text(LEFT, 20, f"Processor time of a step in a {plant} of pumps", "start", font_weight="bold")
    yield from grid(across, up)
    for (kind, field), curve_points in seen.items():
        yield from curve(sorted(curve_points), across, up, COLOURS[kind], field == "microsecondsBefore")
    kinds = [kind for kind in COLOURS if any(kind == known for known, _ in seen)]
    yield from legend(kinds, WIDTH - RIGHT + 14, any(field == "microsecondsBefore" for _, field in seen))
    yield "</svg>"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        rows = json.load(file)
    for plant in sorted({row["plant"] for row in rows}):
        path = f"{sys.argv[2]}/step-cost-{plant}.svg"
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(drawing(plant, [row for row in rows if row["plant"] == plant])) + "\n")
        print(path)


if __name__ == "__main__":
    main()
