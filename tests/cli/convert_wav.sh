# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# The channels' tones are 1000 Hz and 1500 Hz at -6 dBFS.
# Levels are compared in whole decibels: the filters' ripple and gain are the library's own matter.
summary() { sed -E 's/(-[0-9]+)\.[0-9]+ dBFS/\1.xx dBFS/g'; }

make_dsd dsf a.dsf 0.5
make_dsd dsdiff b.dff 0.5
make_dsd 1bit c.bin 0.5
make_dsd dsf d.dsf 0.5 3072000
make_dsd dsdiff mono.dff 0.5 2822400 1
make_dsd dsf six.dsf 0.5 2822400 6
for in in a.dsf b.dff c.bin d.dsf mono.dff six.dsf; do
  try corvin convert $in -o $in.wav | summary
  wav_facts $in.wav
done
# Equal but for the last frames, where the silence behind the sound begins.
cmp -n 260000 a.dsf.wav b.dff.wav
cmp -n 260000 a.dsf.wav c.bin.wav

try corvin convert a.dsf -o 16.wav -b 16 -r 44100 | summary
try corvin convert a.dsf -o 32.wav -b 32 -r 48000 | summary
wav_facts 16.wav 32.wav

# Nothing in, nothing out, which is no fault.
make_dsd dsf none.dsf 0
try corvin convert none.dsf -o none.wav
wav_facts none.wav
