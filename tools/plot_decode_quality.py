#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
"""Draws docs/quality/decode.svg from decode.csv and decode_curves.csv beside it."""

import csv
import pathlib

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "docs" / "quality"
COLOURS = ["#1f5fa8", "#c0392b", "#2e8b57", "#8e44ad"]
WIDTH, HEIGHT, LEFT, TOP = 560, 260, 60, 40


def panel(out, top, title, x_range, y_range, x_ticks, y_ticks, x_label):
    """Draws a frame and returns the mapping of data to the picture."""

    def place(x, y):
        px = LEFT + (x - x_range[0]) / (x_range[1] - x_range[0]) * WIDTH
        py = top + HEIGHT - (y - y_range[0]) / (y_range[1] - y_range[0]) * HEIGHT
        return px, py

    out.append(f'<rect x="{LEFT}" y="{top}" width="{WIDTH}" height="{HEIGHT}" fill="none" stroke="#888"/>')
    out.append(f'<text x="{LEFT}" y="{top - 10}" font-weight="bold">{title}</text>')
    for y in y_ticks:
        _, py = place(x_range[0], y)
        out.append(f'<line x1="{LEFT}" x2="{LEFT + WIDTH}" y1="{py:.1f}" y2="{py:.1f}" stroke="#ddd"/>')
        out.append(f'<text x="{LEFT - 6}" y="{py + 4:.1f}" text-anchor="end">{y:g}</text>')
    for x, label in x_ticks:
        px, _ = place(x, y_range[0])
        out.append(f'<text x="{px:.1f}" y="{top + HEIGHT + 16}" text-anchor="middle">{label}</text>')
    out.append(f'<text x="{LEFT + WIDTH}" y="{top + HEIGHT + 32}" text-anchor="end">{x_label}</text>')
    return place


def main():
    with open(FOLDER / "decode_curves.csv") as file:
        curves = list(csv.reader(file))
    with open(FOLDER / "decode.csv") as file:
        rows = list(csv.DictReader(file))
    out = []
    place = panel(out, TOP, "DSD64 decoded: response in dB", (0.85, 1.1), (-200, 5),
                  [(x / 100, f"{x / 100:g}") for x in range(85, 111, 5)],
                  range(-200, 1, 25), "half the PCM rate = 1")
    for column, name in enumerate(curves[0][1:], start=1):
        points = [place(float(r[0]), float(r[column])) for r in curves[1:] if 0.85 <= float(r[0]) <= 1.1]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        colour = COLOURS[column - 1]
        out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
        label = name.removesuffix("_db").replace("_percent", " %").replace("_", " ")
        out.append(f'<text x="{LEFT + 12}" y="{TOP + 140 + 18 * column}" fill="{colour}">{label}</text>')
    top = TOP + HEIGHT + 80
    place = panel(out, top, "Worst stop band and worst alias of every plan, in dB", (0, len(rows) + 1),
                  (-185, -145), [(i, str(i)) for i in range(10, len(rows) + 1, 10)],
                  range(-180, -144, 10), "row of decode.csv")
    for field, colour in (("stop_db", COLOURS[0]), ("alias_db", COLOURS[1])):
        for i, row in enumerate(rows, start=1):
            x, y = place(i, max(-184.0, float(row[field])))
            out.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.5" fill="{colour}"/>')
    for i, (name, colour) in enumerate((("stop band", COLOURS[0]), ("alias", COLOURS[1]))):
        out.append(f'<text x="{LEFT + WIDTH - 140 + 80 * i}" y="{top - 10}" fill="{colour}">{name}</text>')
    height = top + HEIGHT + 50
    (FOLDER / "decode.svg").write_text(
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + WIDTH + 20}" height="{height}" '
        'font-family="sans-serif" font-size="12">\n'
        f'<rect width="100%" height="100%" fill="white"/>\n' + "\n".join(out) + "\n</svg>\n")


if __name__ == "__main__":
    main()
