# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# refused FILE: the conversion fails without a trace, and an older output stays.
refused() {
  mkdir out
  echo old >out/out.wav
  for engine in studio classic; do
    try corvin convert "$1" -o out/out.wav -y --engine $engine
  done
  list out
  cat out/out.wav
  rm -r out
}

levelless() { cut -d, -f1-4; }

make_dsd dsf a.dsf 0.1
make_dsd dsdiff b.dff 0.1
make_dsd 1bit c.bin 0.1
echo "no sound here" >text
mkdir directory
refused missing
refused text
refused directory

head -c 60 a.dsf >stub.dsf
head -c 80 a.dsf >soundless.dsf
cp a.dsf crowd.dsf && patch crowd.dsf 52 c8000000  # 200 channels
cp a.dsf blockless.dsf && patch blockless.dsf 72 00000000
for name in stub soundless crowd blockless; do refused $name.dsf; done

cp b.dff packed.dff && patch packed.dff 98 "44535420" && patch packed.dff 118 "44535420"
head -c 60 b.dff >stub.dff
for name in packed stub; do refused $name.dff; done
head -c 2048 c.bin >soundless.bin
refused soundless.bin

# Without its compression type the classic engine does not find the sound, which looks like a file
# without sound.
cp b.dff untyped.dff && patch untyped.dff 86 "43434343"
for engine in studio classic; do
  try through levelless corvin convert untyped.dff -o untyped.wav -y --engine $engine
done

# What is left of a file that was cut short is worth having.
head -c 40000 a.dsf >half.dsf
head -c 40000 b.dff >half.dff
for half in half.dsf half.dff; do
  for engine in studio classic; do
    try through levelless corvin convert $half -o half.wav -y --engine $engine
  done
done
