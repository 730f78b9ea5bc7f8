# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Each container, both families of rates, and a rate of neither.
make_dsd dsf a.dsf 0.25
make_dsd dsdiff b.dff 0.1 6144000 1
make_dsd 1bit c.bin 0.01 12288000 4
make_dsd dsf odd.dsf 0.01 3000000 6
make_dsd dsdiff quad.dff 0.01 11289600
for engine in studio classic; do
  try corvin info a.dsf b.dff c.bin odd.dsf quad.dff --engine $engine
done

# Over an hour: only the header has to be there for the classic numbers.
patch a.dsf 64 "00c8af5c02000000"
try corvin info a.dsf --engine classic
try corvin info a.dsf

# Compressed sound: everything but the sound can be told.
cp b.dff packed.dff && patch packed.dff 94 "44535420" && patch packed.dff 114 "44535420"
try corvin info packed.dff
try corvin convert packed.dff -o packed.wav
