#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
"""Writes studio/modulator/noise_shaper_weights.inc: the tenth-order loops of DSD64 and DSD128.

A loop is given by its zeros, in Hz at DSD64 (twice as high at DSD128), and by its poles z =
exp(-e^p1 +- j e^p2). Both were searched together, by simulation of the loop with its own number of
paths: least noise against targets for seven bands from 20 Hz to 200 kHz, at a given largest signal.
Zeros spread evenly over the audible band alone leave a rise of 40 dB and more from 20 to 40 kHz.

The resonators' feedback g and the weights c follow, the latter by a linear system, solved in 80
decimal digits: in double the weights of a tenth-order loop lose most of theirs.
"""

import sys
from decimal import Decimal, getcontext

getcontext().prec = 80

DSD64_HZ = 2822400
PI = Decimal("3.14159265358979323846264338327950288419716939937510582097494459230781640628620899863")

# zeros, then (p1, p2)
LOOPS = {
    "Standard64": (["1671.1", "9249.2", "14385.1", "18714.8", "21883.5"],
                   [("-5.05939", "-2.02164"), ("-3.57657", "-3.24477"),
                    ("-0.72821", "-2.64526"), ("-2.49723", "-2.99310"),
                    ("-3.54477", "-3.59296")]),
    "High64": (["1401.9", "8524.6", "14431.8", "18261.3", "21838.3"],
               [("-4.15768", "-2.11530"), ("-4.18469", "-3.86855"),
                ("-1.16652", "-2.79211"), ("-2.08061", "-3.45819"),
                ("-3.09476", "-2.99297")]),
    "Standard128": (["1280.9", "5873.4", "9890.2", "11419.6", "22557.0"],
                    [("-4.64203", "-2.74059"), ("-5.09661", "-4.72533"),
                     ("-3.00795", "-2.64959"), ("-3.74494", "-2.85315"),
                     ("-0.18718", "-3.62137")]),
    "High128": (["1434.8", "8411.1", "13883.1", "17900.9", "21322.4"],
                [("-4.20243", "-2.11573"), ("-4.21100", "-3.81085"),
                 ("-1.19145", "-2.85113"), ("-2.07104", "-3.49242"),
                 ("-3.12783", "-2.97721")]),
    "Best": (["1272.3", "9133.2", "15088.7", "18788.9", "23352.4"],
             [("-4.84487", "-2.06159"), ("-3.52400", "-3.51457"),
              ("-0.78758", "-2.89187"), ("-2.18512", "-2.97739"),
              ("-3.43638", "-3.11071")]),
}


def cosine(x):
    term = total = Decimal(1)
    for k in range(1, 60):
        term *= -x * x / (2 * k * (2 * k - 1))
        total += term
    return total


def product(a, b):
    out = [Decimal(0)] * (len(a) + len(b) - 1)
    for i, x in enumerate(a):
        for j, y in enumerate(b):
            out[i + j] += x * y
    return out


def solve(rows):
    """Gauss-Jordan elimination of rows [a_1 ... a_n, b]."""
    size = len(rows)
    for k in range(size):
        pivot = max(range(k, size), key=lambda r: abs(rows[r][k]))
        rows[k], rows[pivot] = rows[pivot], rows[k]
        rows[k] = [value / rows[k][k] for value in rows[k]]
        for r in range(size):
            if r != k:
                factor = rows[r][k]
                rows[r] = [value - factor * one for value, one in zip(rows[r], rows[k])]
    return [row[-1] for row in rows]


def feedback(hertz):
    """g = 4 sin^2(pi f / rate) as the loop has it: in double."""
    return float(2 - 2 * cosine(2 * PI * Decimal(hertz) / DSD64_HZ))


def weights(zeros, poles):
    """c_1 ... c_10: polynomials in d = z - 1, lowest power first."""
    one_plus_d = [Decimal(1), Decimal(1)]
    numerators = [[g, g, Decimal(1)] for g in (Decimal(feedback(hertz)) for hertz in zeros)]
    denominator = [Decimal(1)]
    for p1, p2 in poles:
        radius = (-Decimal(p1).exp()).exp()
        cos = cosine(Decimal(p2).exp())
        denominator = product(denominator, [(1 - radius) ** 2 + 2 * radius * (1 - cos),
                                            2 - 2 * radius * cos, Decimal(1)])
    all_zeros = [Decimal(1)]
    for n in numerators:
        all_zeros = product(all_zeros, n)
    columns = []
    for k in range(len(numerators)):
        common = [Decimal(1)]
        for _ in range(k):
            common = product(common, one_plus_d)
        for n in numerators[k + 1:]:
            common = product(common, n)
        columns.append(product(common, [Decimal(0), Decimal(1)]))
        columns.append(product(common, one_plus_d))
    size = len(columns)
    rows = [[column[power] if power < len(column) else Decimal(0) for column in columns] +
            [denominator[power] - all_zeros[power]] for power in range(size)]
    return solve(rows)


def table():
    lines = ["// SPDX-License-Identifier: MIT", "// Copyright (c) 2026 The Corvin developers", "//",
             "// Written by tools/design_noise_shapers.py: feedback g_1 ... g_5 and weights c_1 ... c_10.",
             ""]
    for name, (zeros, poles) in LOOPS.items():
        lines.append(f"constexpr double kZeros{name}[] = {{")
        lines += [f"    {feedback(hertz).hex()}," for hertz in zeros]
        lines.append("};")
        lines.append(f"constexpr double kWeights{name}[] = {{")
        lines += [f"    {float(c).hex()}," for c in weights(zeros, poles)]
        lines.append("};")
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    sys.stdout.write(table())
