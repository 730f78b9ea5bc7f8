#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
"""plot_lowpass.py CORVIN: draws docs/quality/lowpass.svg, what is left of a quiet tone and the modulator's
noise behind the bands of corvin convert --lowpass. Needs sox, which makes the tone."""

import cmath
import math
import pathlib
import struct
import subprocess
import sys
import tempfile

from plot_decode_quality import COLOURS, HEIGHT, LEFT, TOP, WIDTH, panel

TARGET = pathlib.Path(__file__).resolve().parent.parent / "docs" / "quality" / "lowpass.svg"
RATE = 176400
POINTS = 4096
CURVES = [("off", ["--lowpass", "off"]), ("default, 20k:32k", []), ("20k:24k", ["--lowpass", "20k:24k"])]


def transform(x):
    """The discrete Fourier transform of a power of two of numbers."""
    if len(x) == 1:
        return x
    even, odd = transform(x[::2]), transform(x[1::2])
    turned = [cmath.exp(-2j * math.pi * k / len(x)) * odd[k] for k in range(len(odd))]
    return [a + b for a, b in zip(even, turned)] + [a - b for a, b in zip(even, turned)]


def spectrum(path):
    """Mean power of each bin in dB, a sine of full scale being 0 dB."""
    data = path.read_bytes()
    start = data.index(b"data") + 8
    samples = struct.unpack(f"<{(len(data) - start) // 8}d", data[start:start + (len(data) - start) // 8 * 8])
    window = [0.5 - 0.5 * math.cos(2 * math.pi * i / POINTS) for i in range(POINTS)]
    scale = (sum(window) / 2) ** 2
    power = [0.0] * (POINTS // 2)
    pieces = range(POINTS, len(samples) - 2 * POINTS, POINTS // 2)
    for begin in pieces:
        bins = transform([w * s for w, s in zip(window, samples[begin:begin + POINTS])])
        for k in range(POINTS // 2):
            power[k] += abs(bins[k]) ** 2 / scale / len(pieces)
    return [10 * math.log10(max(p, 1e-20)) for p in power]


def main():
    corvin = sys.argv[1]
    out = []
    place = panel(out, TOP, "DSD64 of a tone at -60 dBFS, as PCM of 176.4 kHz: dB re full scale", (0, 88.2),
                  (-200, 0), [(k, str(k)) for k in range(0, 90, 10)], range(-200, 1, 25), "kHz, in bins of 43 Hz")
    with tempfile.TemporaryDirectory() as folder:
        tone, dsd, pcm = (pathlib.Path(folder) / name for name in ("tone.wav", "tone.dsf", "pcm.wav"))
        subprocess.run(["sox", "-r", "44100", "-n", "-b", "32", tone, "synth", "1", "sine", "1000", "gain", "-60"], check=True)
        subprocess.run([corvin, "convert", "-q", tone, "-o", dsd], check=True)
        for i, (name, options) in enumerate(CURVES):
            subprocess.run([corvin, "convert", "-q", "-y", dsd, "-r", str(RATE), "-b", "f64", "-o", pcm, *options], check=True)
            levels = spectrum(pcm)
            points = (place(k * RATE / POINTS / 1000, max(-200, db)) for k, db in enumerate(levels))
            path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
            out.append(f'<polyline points="{path}" fill="none" stroke="{COLOURS[i]}" stroke-width="1.2"/>')
            out.append(f'<text x="{LEFT + WIDTH - 130}" y="{TOP + 100 + 18 * i}" fill="{COLOURS[i]}">{name}</text>')
    TARGET.write_text(
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + WIDTH + 20}" height="{TOP + HEIGHT + 50}" '
        'font-family="sans-serif" font-size="12">\n'
        '<rect width="100%" height="100%" fill="white"/>\n' + "\n".join(out) + "\n</svg>\n")


if __name__ == "__main__":
    main()
