# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# measure.py make | compare JSON | picture SVG PNG: sounds of known figures, what was measured of them
# against those, and whether a picture is one.

import json
import math
import random
import struct
import sys
import xml.etree.ElementTree

RATE = 48000


def write_wav(path, channels, rate=RATE):
    """32-bit float, so that nothing but the tool adds noise."""
    data = b"".join(struct.pack(f"<{len(channels)}f", *frame) for frame in zip(*channels))
    head = struct.pack("<HHIIHH", 3, len(channels), rate, rate * 4 * len(channels), 4 * len(channels), 32)
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " + struct.pack("<I", 16) + head)
        file.write(b"data" + struct.pack("<I", len(data)) + data)


def sine(hz, db, seconds, phase=0.0):
    level = 10 ** (db / 20)
    step = 2 * math.pi * hz / RATE
    return [level * math.sin(step * i + phase) for i in range(int(seconds * RATE))]


def make():
    rng = random.Random(1)
    tone = sine(1000, -23, 3.5)
    write_wav("ebu.wav", [tone, tone])
    # The worst case between samples: a quarter of the rate at 45 degrees, 3.01 dB above each of them.
    pulse = sine(12000, 0, 1, math.pi / 4)
    write_wav("loud.wav", [sine(997, 0, 1), pulse])
    write_wav("dc.wav", [[0.01] * RATE, [0.0] * RATE])
    # Gaussian, of -40 dBFS by the measure in which a sine of full scale has 0.
    deviation = 10 ** (-40 / 20) / math.sqrt(2)
    noise = [rng.gauss(0, deviation) for _ in range(RATE)]
    twin = [a + b for a, b in zip(sine(1000, -20, 1.1), sine(15000, -90, 1.1))]
    write_wav("noise.wav", [noise])
    write_wav("twin.wav", [twin])
    write_wav("quiet.wav", [sine(3000, -100, 0.7)])


failures = 0


def expect(what, value, wanted, tolerance):
    global failures
    if value is None or abs(value - wanted) > tolerance:
        failures += 1
        print(f"{what}: {value}, not {wanted} within {tolerance}")


def compare(path):
    with open(path) as file:
        files = {one["file"]: one for one in json.load(file)}

    def band(channel, low):
        return next(b["power_dbfs"] for b in channel["bands"] if b["from_hz"] == low)

    # EBU Tech 3341, table 1, cases 1 and 3: 0.1 LU.
    ebu = files["ebu.wav"]
    for key in ("integrated_lufs", "max_momentary_lufs", "max_short_term_lufs"):
        expect(key, ebu[key], -23.0, 0.1)
    expect("range", ebu["range_lu"], 0.0, 0.1)

    loud = files["loud.wav"]["channels"]
    expect("sine's peak", loud[0]["sample_peak_dbfs"], 0, 0.01)
    expect("sine's RMS", loud[0]["rms_dbfs"], 0, 0.001)
    expect("sine in its band", band(loud[0], 20), 0, 0.01)  # as it is printed
    expect("sample peak", loud[1]["sample_peak_dbfs"], -3.01, 0.01)
    # EBU Tech 3341, table 1, cases 15 to 23: +0.2 and -0.4 dB.
    expect("true peak", loud[1]["true_peak_dbtp"], -0.1, 0.3)

    dc = files["dc.wav"]["channels"]
    expect("DC", dc[0]["dc"], 0.01, 1e-6)
    expect("no DC", dc[1]["dc"], 0, 0)
    # The window keeps DC out of the band from 20 Hz on, 180 dB below it.
    if band(dc[0], 20) > -217 or dc[1]["rms_dbfs"] is not None or dc[1]["lines"]:
        print("DC is in the bands, or silence has a level:", dc)

    # White: its power spreads evenly over what the file holds, of DSD what the encoder's filter passes: to
    # the middle between 95 % and all of half the PCM rate. In the narrow bands of some 3000 bins the
    # deviation is some 0.1 dB, that of the sum of 48000 squares 0.03 dB.
    for name, highest in (("noise.wav", 24000), ("noise.dsf", 23400)):
        channel = files[name]["channels"][0]
        density = -40 - 10 * math.log10(24000)
        expect(name + " RMS", channel["rms_dbfs"], density + 10 * math.log10(highest), 0.1)
        expect(name + " in band", band(channel, 20), density + 10 * math.log10(19980), 0.1)
        expect(name + " above", band(channel, 20000), density + 10 * math.log10(highest - 20000), 0.4)
    if files["noise.wav"]["channels"][0]["noise"] is not None:
        print("white noise rises")

    # The second tone, 70 dB below, shows that the window lets nothing through; the modulator's own noise
    # lies lower, and rises where the band ends that it keeps clear, behind 20 kHz.
    for name in ("twin.wav", "twin.dsf"):
        channel = files[name]["channels"][0]
        lines = channel["lines"]
        expect(name + " first line", lines[0]["hz"], 1000, 0.05)
        expect(name + " first level", lines[0]["level_dbfs"], -20, 0.02)
        expect(name + " second line", lines[1]["hz"], 15000, 0.05)
        expect(name + " second level", lines[1]["level_dbfs"], -90, 0.1)
        print(name, channel["lines_in"])
    expect("rising noise", files["twin.dsf"]["channels"][0]["noise"]["begins_hz"], 24000, 3000)
    quiet = files["quiet.wav"]["channels"][0]
    print("quiet.wav", quiet["lines_in"], len(quiet["lines"]))
    expect("idle tone", quiet["lines"][0]["level_dbfs"], -100, 0.02)

    # All bits together have 9.03 dB, 8 times the power of a sine of 50 % modulation.
    six = files["six.dsf"]
    print([channel["name"] for channel in six["channels"]])
    for number, channel in enumerate(six["channels"]):
        expect("tone of six.dsf", channel["sample_peak_dbfs"], -6.02, 0.05)
        expect("bits", band(channel, 40000) is not None and channel["bands"][-1]["power_dbfs"], 9.03, 0.2)
    none = files["none.dsf"]
    print("none.dsf", none["integrated_lufs"], none["channels"][0]["rms_dbfs"], none["channels"][0]["bands"])
    print("figures that differ:", failures)


def picture(svg, png):
    root = xml.etree.ElementTree.parse(svg).getroot()
    name = "{http://www.w3.org/2000/svg}"
    with open(png, "rb") as file:
        head = file.read(24)
    size = struct.unpack(">II", head[16:])
    points = [p.split(",") for line in root.iter(name + "polyline") for p in line.get("points").split()]
    inside = all(0 <= float(x) <= 900 and 0 <= float(y) <= 700 for x, y in points)
    print(repr(root.find(name + "title").text), size, "inside" if inside else "out of the picture")


if sys.argv[1] == "make":
    make()
elif sys.argv[1] == "compare":
    compare(sys.argv[2])
else:
    picture(sys.argv[2], sys.argv[3])
