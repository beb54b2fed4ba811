#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the diagrams of docs/architecture.md as SVG: the floors with the links between folders, from
src/floors.txt, and the road of a point, from the folders named in ROAD.

usage: tools/diagrams.py           writes docs/diagrams/floors.svg and road.svg
       tools/diagrams.py --check   exit status 1 when one is out of date"""

import pathlib
import sys
from xml.sax.saxutils import escape

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDER = ROOT / "docs" / "diagrams"
BOX, HIGH, ACROSS, UP = 110, 34, 40, 46  # width and height of a box, gaps beside and above it
STYLE = """<style>
  text { font: 14px sans-serif; fill: #1a1a1a; text-anchor: middle; dominant-baseline: central }
  text.small { font-size: 12px; fill: #555 }
  rect { fill: #eef3f8; stroke: #4a6785 }
  rect.paper { fill: #ffffff; stroke: none }
  line, path { stroke: #7a8ea3; fill: none }
</style>"""

# What happens to a sweep point, by the folder in which it happens.
ROAD = [("link", "three-byte samples", "to volts"),
        ("sweep", "offsets off,", "test over reference"),
        ("cal", "error correction", ""),
        ("trace", "plane, de-embedding,", "Zo, format, smoothing"),
        ("display", "pixel of the trace,", "a frame when due")]


def floors():
    """[(floor, folder, [folders it is linked to])] of src/floors.txt."""
    rows = []
    for line in (ROOT / "src" / "floors.txt").read_text(encoding="utf-8").splitlines():
        if line.strip() and not line.startswith("#"):
            parts = [part.strip() for part in line.split(":")]
            floor, folder = parts[0].split()
            rows.append((int(floor), folder, parts[1].split() if len(parts) > 1 else []))
    return rows


def svg(width, height, body):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
            f'viewBox="0 0 {width} {height}">\n{STYLE}\n'
            f'<defs><marker id="end" markerWidth="8" markerHeight="8" refX="7" refY="3" '
            f'orient="auto"><path d="M0,0 L7,3 L0,6"/></marker></defs>\n'
            f'<rect class="paper" width="{width}" height="{height}"/>\n{body}</svg>\n')


def box(x, y, name, width=BOX):
    return (f'<rect x="{x}" y="{y}" width="{width}" height="{HIGH}" rx="4"/>\n'
            f'<text x="{x + width / 2:g}" y="{y + HIGH / 2:g}">{escape(name)}</text>\n')


def floors_svg():
    rows = floors()
    levels = sorted({floor for floor, _, _ in rows})
    widest = max(sum(1 for row in rows if row[0] == level) for level in levels)
    width = 60 + widest * (BOX + ACROSS) + 20
    height = 20 + len(levels) * (HIGH + UP)
    at, body = {}, ""
    for level in levels:
        names = [name for floor, name, _ in rows if floor == level]
        y = height - 20 - HIGH - (level - levels[0]) * (HIGH + UP)
        first = 60 + (widest * (BOX + ACROSS) - ACROSS - len(names) * (BOX + ACROSS) + ACROSS) / 2
        body += f'<text class="small" x="30" y="{y + HIGH / 2:g}">{level}</text>\n'
        for i, name in enumerate(names):
            at[name] = (first + i * (BOX + ACROSS), y)
    lines = ""
    for _, name, used in rows:
        for other in used:
            (x, y), (to_x, to_y) = at[name], at[other]
            lines += (f'<line x1="{x + BOX / 2:g}" y1="{y + HIGH:g}" x2="{to_x + BOX / 2:g}" '
                      f'y2="{to_y:g}" marker-end="url(#end)"/>\n')
    return svg(width, height, body + lines + "".join(box(x, y, n) for n, (x, y) in at.items()))


def road_svg():
    known = {folder for _, folder, _ in floors()}
    step, y = 170, 60
    body = '<text class="small" x="36" y="77">bytes</text>\n'
    for i, (folder, first, second) in enumerate(ROAD):
        if folder not in known:
            raise SystemExit(f"tools/diagrams.py: ROAD names {folder}, which is in no floor")
        x = 90 + i * step
        body += (f'<line x1="{x - 25}" y1="{y + HIGH / 2:g}" x2="{x}" y2="{y + HIGH / 2:g}" '
                 f'marker-end="url(#end)"/>\n')
        body += box(x, y, folder + "/", 140)
        for row, text in enumerate((first, second)):
            body += (f'<text class="small" x="{x + 70}" y="{y + HIGH + 16 + 16 * row}">'
                     f"{escape(text)}</text>\n")
    width = 90 + len(ROAD) * step
    body += (f'<path d="M160,{y} L160,24 L{width - 100},24 L{width - 100},{y}"/>\n'
             f'<text class="small" x="{width / 2:g}" y="12">control/measurement.cpp runs each step'
             "</text>\n")
    return svg(width, 140, body)


def main():
    drawn = {"floors.svg": floors_svg(), "road.svg": road_svg()}
    stale = [name for name, text in drawn.items()
             if not (FOLDER / name).exists() or (FOLDER / name).read_text(encoding="utf-8") != text]
    if "--check" in sys.argv:
        print(f"diagrams: {', '.join(stale)} out of date, run tools/diagrams.py"
              if stale else "diagrams: in order")
        return 1 if stale else 0
    for name, text in drawn.items():
        (FOLDER / name).write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
