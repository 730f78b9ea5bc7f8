# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# In order: every container, PCM, and with levels looked at.
make_dsd dsf a.dsf 0.1
make_dsd dsdiff b.dff 0.1 5644800 6
make_dsd 1bit c.1bit 0.1 2822400 1
make_wav in.wav 0.2
flac --totally-silent in.wav -o d.flac
wavpack -q b.dff -o e.wv
try corvin check a.dsf b.dff c.1bit in.wav d.flac e.wv --decode
try corvin check a.dsf --strict
try corvin check - <b.dff

# Damage of all sorts, all of it in one line.
size=$(stat -c %s a.dsf)
head -c $((size - 9000)) a.dsf >cut.dsf
cp a.dsf sizes.dsf && patch sizes.dsf 12 0100000000000000 && printf tail >>sizes.dsf
cp a.dsf tag.dsf && patch tag.dsf 20 7700000000000000
cp d.flac hurt.flac && patch hurt.flac $(($(stat -c %s d.flac) / 2)) ffee00
cp e.wv hurt.wv && patch hurt.wv $(($(stat -c %s e.wv) / 2)) ffee00
head -c 9000 in.wav >cut.wav
cp b.dff form.dff && patch form.dff 4 0000000000000001
for bad in cut.dsf sizes.dsf tag.dsf hurt.flac hurt.wv cut.wav form.dff; do try corvin check $bad; done
try corvin check --strict sizes.dsf
printf text >text.dsf
head -c 50 a.dsf >stub.dsf
mkdir -p music/more && cp a.dsf cut.dsf music && cp text.dsf stub.dsf d.flac music/more
try corvin check -R -j 2 music
try corvin check --json a.dsf sizes.dsf text.dsf

# What may be meant so: only --strict fails for it.
python3 - <<'END'
import random
head = open("a.dsf", "rb").read()[:92]
random.seed(1)
payload = 9 * 2 * 4096
bodies = {
    "idle": bytes([0x96]) * payload,
    "zeros": bytes(payload),
    "noise": bytes(random.randrange(256) for _ in range(payload)),
}
import struct
sound = struct.pack("<8f", 0, 0.5, 1, 1.25, 1, 0.5, 0, -0.5)
form = struct.pack("<HHIIHH", 3, 1, 44100, 176400, 4, 32)
open("loud.wav", "wb").write(b"RIFF" + struct.pack("<I", 4 + 24 + 8 + 32) + b"WAVEfmt " + struct.pack("<I", 16) +
                             form + b"data" + struct.pack("<I", 32) + sound)
for name, body in bodies.items(): open(name + ".dsf", "wb").write(head + body)
END
for file in idle zeros noise; do patch $file.dsf 12 $(printf '%s' "5c20010000000000"); done
sox -n -r 44100 -b 24 silent.wav trim 0 0.1
make_dsd dsf none.dsf 0
for odd in idle.dsf zeros.dsf noise.dsf loud.wav silent.wav none.dsf; do try corvin check --decode $odd; done
try corvin check --decode --strict silent.wav
try corvin check --decode --json loud.wav
