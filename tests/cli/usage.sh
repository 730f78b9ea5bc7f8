# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_dsd dsf in.dsf 0.01
try corvin --version
corvin --help | grep -o "^ *info\|^ *convert\|ended by signal N"
corvin convert --help | tr -s '\n ' ' ' | grep -o "by default 88200\|by default 24"

try corvin
corvin help convert | cmp - <(corvin convert --help)
for command in "" info convert tags "tags set" "tags remove" "tags copy" "tags export" "tags import"; do
  corvin $command --help | sed -En "s/^.{81,}/too wide: $command: &/p"
done
try corvin conver
try corvin convert in.dsf -o out.wav --modulater high
try corvin tags set --pictur=x in.dsf
try corvin info --nothing-like-it in.dsf
try corvin info
try corvin convert in.dsf
try corvin convert -o out.wav
try corvin convert in.dsf -o ""
for rate in 0 -1 768001 44.1k 99999999999999999999; do
  try corvin convert in.dsf -o out.wav -r $rate
done
for rate in 44101 22050; do try corvin convert in.dsf -o out.wav -r $rate -y; done
for option in "--dither x" "--phase x" "--gain x" "--gain 61" "--gain nan" "--gain 1dB" "--engine x"; do
  try corvin convert in.dsf -o out.wav -y $option
done
for bits in 8 20 0 x; do try corvin convert in.dsf -o out.wav -y -b $bits; done
make_dsd dsf slow.dsf 0.1 64000
try corvin convert slow.dsf -o slow.wav
try corvin convert slow.dsf -o out.wav --engine classic
try corvin convert slow.dsf -o out.wav -r 64001 --engine classic
list
