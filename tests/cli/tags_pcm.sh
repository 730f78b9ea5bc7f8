# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Tags of PCM files: from DSD into every kind and back, and changed in place.
make_wav in.wav 0.1
hex 89504e470d0a1a0a01020304 >cover.png
hex ffd8ffe000104a46 >back.jpg
LC_ALL=C.UTF-8 flac --totally-silent in.wav -o in.flac -T "TITLE=Zwölf" -T ARTIST=One -T ARTIST=Two \
  -T GENRE=Jazz -T TRACKNUMBER=03/12 -T TOTALDISCS=2 -T DATE=1993-07-05 -T "LYRICS=la
la" -T COMPOSER=C -T MUSICBRAINZ_ALBUMID=id -T "Own field=x" -T "COMMENT:note=two" -T "PERFORMER=x (violin)"
convert() { corvin convert "$@" 2>&1 | grep -v peak; }
convert in.flac -o song.dsf
corvin tags set -p cover.png -p 4:back.jpg song.dsf
same_tags() { diff <(corvin tags "$1" | tail -n +2 | sort) <(corvin tags "$2" | tail -n +2 | sort); }
for kind in flac wav rf64 aiff wv caf w64; do
  convert song.dsf -o song.$kind
  echo "$kind:"
  same_tags song.dsf song.$kind
done

# What others read. WavPack's own tool tells texts alone, TagLib by way of mediainfo the rest.
metaflac --list song.flac | grep -E "comment\[|MIME|description|data length|type: [34]"
wvunpack -q -ss song.wv 2>/dev/null | grep -aE "^[A-Z].*:  "
mediainfo song.wav | LC_ALL=C.UTF-8 grep -E "^(Track name|Performer|Genre|Composer)  "
/usr/bin/python3 - <<'PYTHON'
from mutagen.aiff import AIFF
from mutagen.apev2 import APEv2
from mutagen.flac import FLAC
from mutagen.wave import WAVE

for file in WAVE("song.wav"), AIFF("song.aiff"):
    print(file.tags.version, ascii(sorted((key, str(file.tags[key])) for key in file.tags if key[:4] != "APIC")))
    print([(int(picture.type), picture.mime, len(picture.data)) for picture in file.tags.getall("APIC")])
print([(picture.type, picture.mime, len(picture.data)) for picture in FLAC("song.flac").pictures])
print(ascii(sorted((key, str(value)) for key, value in APEv2("song.wv").items() if value.kind == 0)))
print([key for key, value in APEv2("song.wv").items() if value.kind == 1])
PYTHON

# Changed in place: the sound stays bit for bit, and so does what stands beside the tags.
metaflac --add-seekpoint=10x --add-padding=1000 song.flac
/usr/bin/python3 -c 'import struct, sys
data = bytearray(open("song.wav", "rb").read()) + b"keep" + struct.pack("<I", 3) + b"abc\0"
data[4:8] = struct.pack("<I", len(data) - 8)
open("song.wav", "wb").write(data)'
for kind in flac wav rf64 aiff wv; do
  cp song.$kind old.$kind
  corvin tags set -t TITLE=Neu -a ARTIST=Three -p 3:back.jpg song.$kind
  corvin tags remove -t lyrics -t "own FIELD" -p 4 song.$kind
  [ $kind = flac ] || same_tags song.flac song.$kind
  for file in song old; do corvin convert $file.$kind -o $file.dsf -y --modulator standard 2>/dev/null; done
  corvin tags remove --all song.dsf old.dsf
  cmp song.dsf old.dsf
done
corvin tags song.flac
flac -ts song.flac
wvunpack -qv song.wv
metaflac --list song.flac | grep -E "type: [01235]|vendor"
grep -c keep song.wav
for kind in flac wav rf64 aiff wv; do
  corvin tags remove --all song.$kind
  corvin tags song.$kind
done

# Files that are not whole are left alone.
head -c 20000 old.wav >cut.wav
cp cut.wav before.wav
try corvin tags set -t TITLE=x cut.wav
cmp cut.wav before.wav
head -c 100 old.flac >cut.flac
try corvin tags set -t TITLE=x cut.flac
try corvin tags set -t TITLE=x song.caf
