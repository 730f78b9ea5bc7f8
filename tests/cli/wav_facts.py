# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# wav_facts.py FILE...: format and length of each WAV file, and how loud 1000 Hz and 1500 Hz are in
# each channel, in whole decibels below full scale.

import cmath
import math
import sys
import wave


def tone_db(samples, full_scale, cycles_per_sample):
    """Level of one tone, away from the ends where the filters settle."""
    skipped = len(samples) // 5
    if not samples:
        return "none"
    middle = samples[skipped : len(samples) - skipped]
    total = weights = 0
    for i, sample in enumerate(middle):
        weight = 1 - math.cos(2 * math.pi * (i + 0.5) / len(middle))
        total += weight * sample * cmath.exp(-2j * math.pi * cycles_per_sample * i)
        weights += weight
    level = 2 * abs(total) / weights / full_scale
    return "none" if level < 1e-3 else "%.0f dB" % (20 * math.log10(level))


for path in sys.argv[1:]:
    with wave.open(path, "rb") as wav:
        channels, width, rate, frames = wav.getparams()[:4]
        data = wav.readframes(frames)
    assert len(data) == frames * channels * width, "the data chunk is shorter than its header says"
    print(f"{path}: {rate} Hz, {8 * width} bits, {frames} frames")
    for c in range(channels):
        samples = [
            int.from_bytes(data[i : i + width], "little", signed=True)
            for i in range(c * width, len(data), channels * width)
        ]
        full_scale = 1 << (8 * width - 1)
        tones = [tone_db(samples, full_scale, hz / rate) for hz in (1000, 1500)]
        print(f"  channel {c}:", ", ".join(tones))
