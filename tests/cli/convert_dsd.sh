# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# The tones are at -6 dBFS; each pair of rates has a level of its own within 1.5 dB of that.
# round_trip IN OUT [OPTION...]
round_trip() {
  try corvin convert "$@" && corvin info "${3-}" | sed -n '2,$p'
  corvin convert "$3" -o back.wav -y -r 44100 -b 16 >/dev/null 2>&1
  wav_facts back.wav | sed -E 's/-[567] dB/about -6 dB/g'
}

make_wav stereo.wav 0.5
for out in stereo.dsf stereo.DFF stereo.1bit; do round_trip stereo.wav -o $out; done
make_wav mono.wav 0.2 96000 1 32
for out in mono.dsf mono.dff mono.1bit; do round_trip mono.wav -o $out -r dsd128; done
make_wav six.wav 0.2 48000 6 24
for out in six.dsf six.dff six.1bit; do round_trip six.wav -o $out; done
round_trip stereo.wav -o high.dsf -r dsd256
round_trip stereo.wav -o other.dsf -r 3072000

# What outside readers find, above all in the headers of other than two channels.
for file in stereo.dsf six.dsf stereo.DFF mono.dff six.dff; do
  mediainfo --Output='Audio;%Channel(s)% channels, %SamplingRate% Hz, %Duration% ms' $file
done

# From other files the same comes out.
flac --totally-silent stereo.wav -o same.flac
try corvin convert same.flac -o same.dsf
cmp same.dsf stereo.dsf

# Floating point is cut at full scale, and said to be.
python3 - <<'PYTHON'
import struct
values = [1.5, -1.5, 1.0, float("nan"), float("inf")] + [0.25] * 4405
data = struct.pack("<%df" % len(values), *values)
with open("float.wav", "wb") as f:
    f.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt ")
    f.write(struct.pack("<IHHIIHH", 16, 3, 1, 44100, 176400, 4, 32))
    f.write(b"data" + struct.pack("<I", len(data)) + data)
PYTHON
try corvin convert float.wav -o float.dsf

make_wav none.wav 0
try corvin convert none.wav -o none.dsf
