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
make_dsd dsf none.dsf 0
for engine in studio classic; do
  for in in a.dsf b.dff c.bin d.dsf mono.dff six.dsf; do
    try through summary corvin convert $in -o $in.wav -y --engine $engine
    wav_facts $in.wav
  done
  # Equal but for the last frames, where the silence behind the sound begins.
  cmp -n 260000 a.dsf.wav b.dff.wav
  cmp -n 260000 a.dsf.wav c.bin.wav

  try through summary corvin convert a.dsf -o 16.wav -y -b 16 -r 44100 --engine $engine
  try through summary corvin convert a.dsf -o 32.wav -y -b 32 -r 48000 --engine $engine
  wav_facts 16.wav 32.wav

  # Nothing in, nothing out, which is no fault.
  try corvin convert none.dsf -o none.wav -y --engine $engine
  wav_facts none.wav
done

# What the studio engine alone does. It is the one that runs unless another is asked for.
try through summary corvin convert six.dsf -o float.wav -b float -r 176400 --gain -6
try through summary corvin convert a.dsf -o minimum.wav -b 16 --dither shaped --phase minimum
try corvin convert a.dsf -o plain.wav -r 88200
wav_facts float.wav minimum.wav
corvin convert a.dsf -o named.wav --engine studio 2>/dev/null
cmp plain.wav named.wav
try corvin convert a.dsf -o loud.wav --gain 9 -b 16 -r 44100
for option in "--dither none" "--phase linear" "--gain 0" "-b float"; do
  try corvin convert a.dsf -o no.wav --engine classic $option
done

# Every rate of the engine.
make_dsd dsf short.dsf 0.05
for rate in 44100 48000 88200 96000 176400 192000 352800 384000 705600 768000; do
  corvin convert short.dsf -o $rate.wav -r $rate -b 32 2>&1 | cut -d, -f1-4
done
wav_facts 768000.wav
