# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# wav_facts.py FILE...: format and length of each WAV file, and how loud 1000 Hz and 1500 Hz are in
# each channel, in whole decibels below full scale.

import cmath
import math
import struct
import sys


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


def read_wav(path):
    """Channels, bytes of a sample, rate, whether floating, speakers (None: not stated), sound."""
    with open(path, "rb") as file:
        data = file.read()
    assert data[8:12] == b"WAVE" and data[:4] in (b"RIFF", b"RF64"), "no WAV file"
    assert data[:4] == b"RF64" or struct.unpack_from("<I", data, 4)[0] == len(data) - 8
    at = 12
    while True:
        name, size = struct.unpack_from("<4sI", data, at)
        body = data[at + 8 : at + 8 + size]
        if name == b"fmt ":
            tag, channels, rate, per_second, per_frame, bits = struct.unpack_from("<HHIIHH", body)
            speakers = None
            if tag == 0xFFFE:
                speakers, tag = struct.unpack_from("<IH", body, 20)
            assert per_second == rate * per_frame and per_frame == channels * bits // 8
            assert tag in (1, 3)
        if name == b"data":
            assert len(body) == size, "the data chunk is shorter than its header says"
            return channels, bits // 8, rate, tag == 3, speakers, body
        at += 8 + size + size % 2


for path in sys.argv[1:]:
    channels, width, rate, floating, speakers, data = read_wav(path)
    frames = len(data) // (channels * width)
    notes = (", floating" if floating else "") + (f", speakers {speakers:#x}" if speakers else "")
    print(f"{path}: {rate} Hz, {8 * width} bits, {frames} frames{notes}")
    for c in range(channels):
        if floating:
            samples = [value[0] for value in struct.iter_unpack("<f", data)][c::channels]
        else:
            samples = [
                int.from_bytes(data[i : i + width], "little", signed=True)
                for i in range(c * width, len(data), channels * width)
            ]
        full_scale = 1 if floating else 1 << (8 * width - 1)
        tones = [tone_db(samples, full_scale, hz / rate) for hz in (1000, 1500)]
        print(f"  channel {c}:", ", ".join(tones))
