# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_wav in.wav 0.1
hex 89504e470d0a1a0a0000000d49484452000000010000000108020000009077 \
  53de0000000c49444154789c63f8cfc000000301010018dd8db00000000049454e44ae426082 >cover.png

# Each kind of file with its own kind of tags. The artist is longer than the field of the flat
# functions' record.
LC_ALL=C.UTF-8 flac --totally-silent in.wav -o in.flac -T "TITLE=Zwölf \"Uhr\" \\ 音" -T "ALBUM=A" -T DATE=1999-12-31 \
  -T TRACKNUMBER=3 -T GENRE=Jazz -T COMPOSER=C -T "COMMENT=two
lines" -T "ARTIST=x$(printf 'ä%.0s' {1..400})" --picture "3|image/png|front ü||cover.png"
/usr/bin/python3 - <<'PYTHON'
import shutil
from mutagen.wave import WAVE
from mutagen.id3 import TIT2, TPE1, TDRC, COMM, APIC

shutil.copy("in.wav", "id3.wav")
wav = WAVE("id3.wav")
wav.add_tags()
wav.tags.add(TIT2(encoding=1, text="Ünicode"))
wav.tags.add(TPE1(encoding=3, text=["One", "Two"]))
wav.tags.add(TDRC(encoding=3, text="2001-02-03"))
wav.tags.add(COMM(encoding=3, lang="eng", desc="", text="said"))
wav.tags.add(APIC(encoding=3, mime="image/jpeg", type=4, desc="back", data=b"12"))
wav.tags.add(APIC(encoding=3, mime="image/jpeg", type=3, desc="front", data=b"123"))
wav.save()
PYTHON
for in in in.flac id3.wav in.wav; do corvin convert $in -o $in.dsf 2>/dev/null; done
corvin convert in.flac -o in.dff 2>/dev/null
corvin convert in.flac -o in.1bit 2>/dev/null
try corvin tags in.flac.dsf id3.wav.dsf in.wav.dsf in.dff in.1bit | sed -E 's/(ä){200,}/.../'
corvin tags in.flac.dsf | LC_ALL=C.UTF-8 grep -o ä | wc -l
corvin tags --json in.flac.dsf in.wav.dsf | python3 -c '
import json, sys
for entry in json.load(sys.stdin):
    fields = entry["fields"]
    fields["ARTIST"] = len("".join(fields.get("ARTIST", [])).encode())
    print(json.dumps(entry, sort_keys=True))'

# What another reader finds.
/usr/bin/python3 - <<'PYTHON'
from mutagen.dsf import DSF

for path in "in.flac.dsf", "id3.wav.dsf":
    file = DSF(path)
    for name in "TIT2", "TALB", "TRCK", "TCON", "TCOM":
        print(name, file.tags.get(name))
    print("length", file.info.length)
    for picture in file.tags.getall("APIC"):
        original = open("cover.png", "rb").read() if picture.mime == "image/png" else b"123"
        print(picture.type, picture.mime, picture.desc, picture.data == original)
PYTHON

# What another writer has put in: version 2.4, in both kinds of file, comments in any language.
corvin convert in.wav -o other.dff 2>/dev/null
cp in.wav.dsf other.dsf
/usr/bin/python3 - <<'PYTHON'
from mutagen.dsdiff import DSDIFF
from mutagen.dsf import DSF
from mutagen.id3 import TIT2, TDRC, COMM, APIC

for path, kind in ("other.dff", DSDIFF), ("other.dsf", DSF):
    file = kind(path)
    if file.tags is None:
        file.add_tags()
    file.tags.add(TIT2(encoding=3, text="Fünf"))
    file.tags.add(TDRC(encoding=3, text="2004-05-06"))
    file.tags.add(COMM(encoding=1, lang="eng", desc="what", text="not this"))
    file.tags.add(COMM(encoding=1, lang="eng", desc="", text="plain"))
    file.tags.add(APIC(encoding=0, mime="image/png", type=3, desc="", data=b"\xff\x00" * 200))
    file.save()
PYTHON
try corvin tags other.dff other.dsf

# From container to container the whole block goes as it stands.
try corvin convert other.dsf -o carried.dff
try corvin convert carried.dff -o carried.dsf
cmp other.dsf carried.dsf

# Texts may be any bytes, and names of files as well.
/usr/bin/python3 - <<'PYTHON'
data = open("in.flac.dsf", "rb").read()
at = data.rindex("Zwölf".encode())
open(b"odd\xff\".dsf", "wb").write(data[:at] + b"\xe9\x1b\x9b\x01\0" + data[at + 5 :])
PYTHON
corvin tags --json odd* | python3 -c '
import json, sys
entry = json.load(sys.stdin)[0]
print(ascii(entry["file"]), ascii(entry["fields"]["TITLE"]))'
corvin tags odd* | grep TITLE

# Failures.
for bad in missing cover.png; do try corvin tags $bad; done
try corvin tags --json missing
try corvin tags missing in.wav.dsf
try corvin tags
untold() { "$@" >/dev/full; }
try untold corvin tags in.wav.dsf
