# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# DSD in WavPack files, packed by another program: the sound comes out bit for bit.
make_dsd dsdiff two.dff 0.5
make_dsd dsf one.dsf 0.3 5644800 1
make_dsd dsf six.dsf 0.2 2822400 6
for in in two.dff one.dsf six.dsf; do
  wavpack -q $in -o $in.wv
  try corvin info $in.wv
  corvin convert $in -o plain.dff -y 2>/dev/null
  try corvin convert $in.wv -o out.dff -y
  cmp plain.dff out.dff
done
for in in two.dff two.dff.wv; do corvin convert $in -o $in.wav 2>/dev/null; done
cmp two.dff.wav two.dff.wv.wav

# A stretch from the middle, which takes a step within the file.
for in in two.dff two.dff.wv; do corvin convert $in -o $in.wav -y --skip 0.2s 2>/dev/null; done
cmp two.dff.wav two.dff.wv.wav

# Tags are APEv2's, which go along.
try corvin tags set -t TITLE=Tone -a ARTIST=One -a ARTIST=Two two.dff.wv
wvunpack -qv two.dff.wv
corvin convert two.dff.wv -o tagged.dsf 2>/dev/null
try corvin tags two.dff.wv tagged.dsf

# Damaged, and cut short.
cp six.dsf.wv hurt.wv
patch hurt.wv $(($(stat -c %s hurt.wv) / 2)) ffee00
try corvin convert hurt.wv -o out.dsf -y
head -c 100000 six.dsf.wv >cut.wv
try corvin convert cut.wv -o cut.dsf
list | grep "^cut"
