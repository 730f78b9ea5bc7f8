#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
"""Draws docs/quality/encode.svg from the encode*.csv beside it."""

import csv
import math

from plot_decode_quality import FOLDER, HEIGHT, LEFT, TOP, WIDTH, panel

COLOURS = ["#1f5fa8", "#c0392b", "#2e8b57", "#8e44ad", "#b9770e", "#566573"]
LOW, HIGH = 100, 2e6
LABEL_STEP = 16
BANDS = (20e3, 24e3, 30e3, 40e3, 50e3, 100e3, 200e3)
BAND_COLOURS = COLOURS + ["#d35400", "#16a085"]


def bands_panel(out, top):
    """What every grade leaves from 20 to 200 kHz, a step per band."""
    with open(FOLDER / "encode_bands.csv") as file:
        rows = [r for r in csv.DictReader(file) if r["signal_dbfs"] == "-6"]
    place = panel(out, top, "A sine at -6 dBFS: noise per band in dB of full modulation",
                  (math.log10(BANDS[0]), math.log10(BANDS[-1])), (-200, 0),
                  [(math.log10(hz), f"{hz / 1000:g}") for hz in BANDS], range(-200, 1, 20), "kHz")
    for i, row in enumerate(rows):
        powers = [float(value) for name, value in row.items() if "k_" in name]
        path = " ".join(f"{x:.1f},{y:.1f}" for band, power in enumerate(powers)
                        for x, y in (place(math.log10(hz), max(-200.0, power))
                                     for hz in BANDS[band:band + 2]))
        colour = BAND_COLOURS[i]
        out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
        label = f'DSD{int(row["dsd_rate"]) // 44100} {row["modulator"]}'
        out.append(f'<text x="{LEFT + WIDTH - 130}" y="{top + HEIGHT - 130 + LABEL_STEP * i}" '
                   f'fill="{colour}">{label}</text>')


def main():
    with open(FOLDER / "encode_spectra.csv") as file:
        spectra = list(csv.reader(file))
    with open(FOLDER / "encode.csv") as file:
        rows = list(csv.DictReader(file))
    out = []
    ticks = [(math.log10(hz), f"{hz / 1000:g}") for hz in (100, 1000, 10000, 100000, 1000000)]
    place = panel(out, TOP, "A sine of 997 Hz at 0 dBFS: density in dB of full modulation in 1 Hz",
                  (math.log10(LOW), math.log10(HIGH)), (-240, 0), ticks, range(-240, 1, 40), "kHz")
    for column, name in enumerate(spectra[0][1:], start=1):
        points = [place(math.log10(float(r[0])), max(-240.0, float(r[column])))
                  for r in spectra[1:] if r[column] and float(r[0]) <= HIGH]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        colour = COLOURS[column - 1]
        out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
        label = name.removesuffix("_db").replace("dsd", "DSD").replace("_", " ")
        out.append(f'<text x="{LEFT + WIDTH - 130}" y="{TOP + HEIGHT - 100 + LABEL_STEP * column}" '
                   f'fill="{colour}">{label}</text>')
    top = TOP + HEIGHT + 80
    place = panel(out, top, "Worst image or alias of every plan, in dB", (0, len(rows) + 1),
                  (-185, -145), [(i, str(i)) for i in range(10, len(rows) + 1, 10)],
                  range(-180, -144, 10), "row of encode.csv")
    for i, row in enumerate(rows, start=1):
        x, y = place(i, max(-184.0, float(row["image_db"])))
        out.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.5" fill="{COLOURS[0]}"/>')
    top += HEIGHT + 80
    bands_panel(out, top)
    (FOLDER / "encode.svg").write_text(
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + WIDTH + 20}" '
        f'height="{top + HEIGHT + 50}" font-family="sans-serif" font-size="12">\n'
        '<rect width="100%" height="100%" fill="white"/>\n' + "\n".join(out) + "\n</svg>\n")


if __name__ == "__main__":
    main()
