# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Each pair of rates has a level of its own within 1.5 dB of the tones' -6 dBFS.
# round_trip IN -o OUT [OPTION...]
round_trip() {
  try corvin convert "$@" --engine classic && corvin info "${3-}" | sed -n '2,$p'
  corvin convert "$3" -o back.wav -y -r 44100 -b 16 >/dev/null 2>&1
  wav_facts back.wav | sed -E 's/-[567] dB/about -6 dB/g'
}

make_wav stereo.wav 0.2
round_trip stereo.wav -o stereo.dsf
make_wav mono.wav 0.1 96000 1 32
round_trip mono.wav -o mono.dff -r dsd128
make_wav six.wav 0.1 48000 6 24
for out in six.dsf six.dff six.1bit; do round_trip six.wav -o $out; done
# The headers of other than two channels are mended after the conversion.
for file in six.dsf mono.dff six.dff; do
  mediainfo --Output='Audio;%Channel(s)% channels, %SamplingRate% Hz, %Duration% ms' $file
done

make_wav low.wav 0.1 32000
try corvin convert low.wav -o low.dsf --engine classic
try corvin convert stereo.wav -o new.dsf --engine classic -r 3000000
try corvin convert stereo.wav -o new.dsf --engine classic --modulator high

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
try corvin convert float.wav -o float.dsf --engine classic

