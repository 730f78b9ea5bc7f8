# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Noise, so that there is one place at which two are alike; what is left is known beforehand.
python3 - <<'END'
import random
import struct

def write(path, samples, channels=2, rate=44100):
    data = struct.pack(f"<{len(samples)}h", *samples)
    head = struct.pack("<HHIIHH", 1, channels, rate, rate * 2 * channels, 2 * channels, 16)
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " + struct.pack("<I", 16))
        file.write(head + b"data" + struct.pack("<I", len(data)) + data)

rng = random.Random(2)
def noise(frames):
    return [rng.randrange(-8000, 8001) for _ in range(2 * frames)]
sound = noise(22050)
write("a.wav", sound)
# One sample less by a 32th of full scale: -30.10 dBFS, and 40.42 dB less over all frames, as the
# power of a sine of that peak is half the peak's.
other = list(sound)
other[20001] -= 1024
write("one.wav", other)
write("late.wav", noise(4321) + sound)
write("early.wav", sound[2 * 777 :])
write("turned.wav", [-(x // 2) for x in sound])
write("strange.wav", noise(22050))
write("mono.wav", sound[:22050], 1)
write("faster.wav", sound, 2, 48000)
END
for other in a one late early turned strange; do try corvin measure a.wav --null $other.wav; done
for other in mono faster; do try corvin measure a.wav --null $other.wav; done

# Bits, shifted by no whole number of bytes, and a few of them turned.
corvin convert a.wav -o a.dsf -q --modulator standard
corvin convert a.dsf -o cut.dff -q --skip 10003
cp a.dsf turned.dsf
patch turned.dsf 6000 "$(python3 -c "
print('%02x' % (open('a.dsf', 'rb').read()[6000] ^ 0x81))")"
counts() { sed -n '1,9p; /what is left with/,+3p'; }
for other in a.dsf turned.dsf cut.dff; do try corvin measure a.dsf --null $other | counts; done
corvin measure cut.dff --null a.dsf | counts
try corvin measure a.dsf --null a.wav
corvin measure a.wav --null late.wav --json | python3 -c '
import json, sys
one = json.load(sys.stdin)[0]
print(one["file"], one["null"], one["shift_samples"], one["gain_db"], one["inverted"], one["samples"])
for difference in one["differences"]:
    print(difference["shift_samples"], difference["compared_samples"],
          [(c["name"], c["differing"], c["sample_peak_dbfs"]) for c in difference["channels"]])'

# Sound that is not there, and options that do not go together.
make_wav none.wav 0
try corvin measure a.wav --null none.wav
try corvin measure a.wav --null gone.wav
try corvin measure a.wav one.wav --null late.wav
try corvin measure a.wav --null one.wav --svg one.wav -y
corvin measure a.wav --null - <one.wav | sed -n 2,5p
corvin measure a.wav --null one.wav --svg left.svg -q >out && rsvg-convert left.svg -o left.png
python3 "$CASES/measure.py" picture left.svg left.png
