# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Damaged PCM: what is left is converted, and both words and exit code tell.
make_wav in.wav 4
flac --totally-silent --no-padding in.wav -o in.flac
wavpack -q in.wav -o in.wv
make_dsd dsf in.dsf 4
for kind in rf64 w64 aiff caf; do corvin convert in.dsf -o in.$kind -b 16 -r 44100 2>/dev/null; done

# Whole ones are found to be whole.
for kind in wav flac wv rf64 w64 aiff caf; do
  corvin convert in.$kind -o out.dsf -y --modulator standard 2>/dev/null || echo "in.$kind fails"
done

# Cut short, by two thirds and by a few bytes.
for kind in wav flac wv rf64 w64 aiff caf; do
  size=$(stat -c %s in.$kind)
  head -c $((size / 3)) in.$kind >third.$kind
  try through "grep -v peak" corvin convert third.$kind -o out.dsf -y --modulator standard
  duration=$(corvin info out.dsf | grep duration)
  echo $duration
done
head -c -5 in.flac >most.flac
try through "grep -v peak" corvin convert most.flac -o out.dsf -y --modulator standard

# A byte that is wrong in the middle. The length stays, so what follows stays in its place.
for kind in flac wv; do
  cp in.$kind hurt.$kind
  patch hurt.$kind $(($(stat -c %s in.$kind) / 2)) ffee00
  try through "grep -v peak" corvin convert hurt.$kind -o out.dsf -y --modulator standard
  corvin info out.dsf | grep duration
done
# Decoders notice it by the sum alone.
cp in.flac sum.flac
patch sum.flac 26 00112233445566778899aabbccddeeff
try through "grep -v peak" corvin convert sum.flac -o out.dsf -y --modulator standard

# Writers to pipes leave the length open, and other tags behind the sound are no sound.
flac --totally-silent -d -c in.flac | cat >piped.wav
patch piped.wav 40 ffffffff
cp in.flac tagged.flac && { printf TAG; printf 'x%.0s' {1..125}; } >>tagged.flac
for file in piped.wav tagged.flac; do
  try through "grep -v peak" corvin convert $file -o out.dsf -y --modulator standard
done
