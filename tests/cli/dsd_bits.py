# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# dsd_bits.py FILE...: the samples of DSD files one behind the other, found without the library. Writes
# for each channel a line of its samples as characters, so that files of any containers compare.
# dsd_bits.py --same FILE FILE...: whether the later files hold the samples of the first.

import struct
import sys

REVERSED = bytes(int(format(byte, "08b")[::-1], 2) for byte in range(256))


def text_of(sound):
    return format(int.from_bytes(b"\1" + sound, "big"), "b")[1:]


def dsf(data):
    _, channels, _, order, samples, block = struct.unpack("<IIIIQI", data[48:76])
    sound = data[92:].translate(REVERSED) if order == 1 else data[92:]
    out = []
    for channel in range(channels):
        blocks = range(channel * block, len(sound), channels * block)
        out.append(text_of(b"".join(sound[at : at + block] for at in blocks))[:samples])
    return out


def chunks(data, at, end):
    while at + 12 <= end:
        size = struct.unpack(">Q", data[at + 4 : at + 12])[0]
        yield data[at : at + 4], at + 12, min(at + 12 + size, end)
        at += 12 + size + size % 2


def dsdiff(data):
    for name, begin, end in chunks(data, 16, len(data)):
        if name == b"PROP":
            for inner, at, _ in chunks(data, begin + 4, end):
                if inner == b"CHNL":
                    channels = struct.unpack(">H", data[at : at + 2])[0]
        if name == b"DSD ":
            sound = data[begin:end]
    return [text_of(sound[c::channels]) for c in range(channels)]


def one_bit(data):
    channels = data[44]
    sound = data[2048:]
    return [text_of(sound[c::channels]) for c in range(channels)]


def bits_of(path):
    with open(path, "rb") as file:
        data = file.read()
    return {b"DSD ": dsf, b"FRM8": dsdiff, b"1bit": one_bit}[data[:4]](data)


if sys.argv[1] == "--same":
    first = bits_of(sys.argv[2])
    for path in sys.argv[3:]:
        print(path, "is the same as" if bits_of(path) == first else "differs from", sys.argv[2])
else:
    for channel in zip(*[bits_of(path) for path in sys.argv[1:]]):
        print("".join(channel))
