#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
"""Writes studio/modulator/noise_shaper_weights.inc: the loops that search one, four and eight paths.

They have the zeros of the tenth-order shaper and its poles z = exp(-e^(p1 + s) +- j e^(p2 + s)),
moved outwards by s. The loop's weights follow from the denominator by a linear system, solved in
80 decimal digits: in double the weights of a tenth-order loop lose most of theirs.
"""

import sys
from decimal import Decimal, getcontext

getcontext().prec = 80

ZEROS = ["0x1.708fe1e2d4c44p-15", "0x1.866cccf6c6dacp-12", "0x1.dfb6e0522b30dp-11",
         "0x1.84d59b05ade3dp-10", "0x1.ecd21fceb5580p-10"]
POLES = [("-.7043043061239983", "-1.7680664636180923"), ("-4.837769359039365", "-2.4100122963242807"),
         ("-4.936769933888986", "-2.701174656941075"), ("-4.268032050390156", "-2.493959867670706"),
         ("-3.038418576481613", "-4.007023027594414")]


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


def weights(shift):
    """c_1 ... c_10: polynomials in d = z - 1, lowest power first."""
    one_plus_d = [Decimal(1), Decimal(1)]
    numerators = [[g, g, Decimal(1)] for g in (Decimal(float.fromhex(text)) for text in ZEROS)]
    denominator = [Decimal(1)]
    for p1, p2 in POLES:
        radius = (-(Decimal(p1) + shift).exp()).exp()
        cos = cosine((Decimal(p2) + shift).exp())
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
             "// Written by tools/design_noise_shapers.py: weights c_1 ... c_10.", ""]
    for name, shift in (("kPlain10", "0"), ("kTree4", "0.05"), ("kTree8", "0.10")):
        lines.append(f"constexpr double {name}[] = {{")
        lines += [f"    {float(c).hex()}," for c in weights(Decimal(shift))]
        lines.append("};")
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    sys.stdout.write(table())
