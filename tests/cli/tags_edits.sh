# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_wav in.wav 0.1
hex 89504e470d0a1a0a01020304 >cover.png
hex ffd8ffe000104a46 >back.jpg
LC_ALL=C.UTF-8 flac --totally-silent in.wav -o in.flac -T "TITLE=Zwölf" -T ARTIST=One -T ARTIST=Two \
  -T GENRE=Jazz -T TRACKNUMBER=03/12 -T TOTALDISCS=2 -T DATE=1993-07-05 -T "LYRICS=la
la" -T REPLAYGAIN_TRACK_GAIN="-6.50 dB" -T MUSICBRAINZ_ALBUMID=id -T "Own field=x" \
  --picture "4|image/jpeg|back|1x1x24|back.jpg"
for kind in dsf dff; do corvin convert in.flac -o song.$kind 2>/dev/null; done
corvin convert song.dsf -o sound.wav 2>/dev/null
try corvin tags show in.flac song.dsf song.dff

same_tags() { cmp <(corvin tags "$1" | tail -n +2) <(corvin tags "$2" | tail -n +2); }

# Edits of several files; what stands beside the tags is not touched.
try corvin tags set -t TITLE=Neu -a ARTIST=Three -a "COMMENT:note=two words" -p cover.png \
  -p 4:cover.png song.dsf song.dff
try corvin tags remove -t lyrics -t "own FIELD" -p 4 song.dsf song.dff
try corvin tags song.dsf
try same_tags song.dsf song.dff
for kind in dsf dff; do
  corvin convert song.$kind -o after.wav -y 2>/dev/null
  corvin tags remove --all sound.wav after.wav
  cmp sound.wav after.wav
  mediainfo --Output='Audio;%Format% %Channel(s)% %SamplingRate% %Duration%' song.$kind
done

# Another reader's view.
python=/usr/bin/python3
$python - <<'PYTHON'
from mutagen.dsdiff import DSDIFF
from mutagen.dsf import DSF

for file in DSF("song.dsf"), DSDIFF("song.dff"):
    print(file.tags.version, sorted((key, str(file.tags[key])) for key in file.tags if key[:4] != "APIC"))
    print([(int(picture.type), picture.mime, len(picture.data)) for picture in file.tags.getall("APIC")])
PYTHON

# What version 2.3 does not hold is told.
cp song.dsf old.dsf
try corvin tags set --id3 2.3 -t DATE=1993-07 old.dsf
$python -c 'from mutagen.dsf import DSF; print(DSF("old.dsf").tags.version, open("old.dsf", "rb").read().count(b"\1\xff\xfe") > 3)'

# There and back through a file, and from kind to kind.
try corvin tags export song.dsf -o song.json --pictures .
list
cmp cover.png song.dsf.1.png
try corvin tags remove --all song.dsf
try corvin tags song.dsf
try corvin tags import song.json
try same_tags song.dsf song.dff
try corvin tags copy in.flac song.dsf song.dff
try same_tags song.dsf song.dff
corvin tags export song.dff | try corvin tags import - song.dsf

# The mode stays, and so does the file when it cannot be written.
chmod 640 song.dsf
corvin tags set -t TITLE=x song.dsf
stat -c %a song.dsf
cp song.dsf before.dsf
full() { (ulimit -f 40; "$@"); }
try full corvin tags set -t TITLE=y song.dsf
cmp song.dsf before.dsf
ls -A | grep corvin-

# Refusals.
try corvin tags set -t TITLE song.dsf
try corvin tags set song.dsf
try corvin tags set -t TITLE=x -p missing.png song.dsf
no_utf8() { corvin tags set -t TITLE=$'\xff' song.dsf; }
try no_utf8
try corvin tags set -t TITLE=x cover.png missing
try corvin tags remove -p 21 song.dsf
try corvin tags remove song.dsf
try corvin tags copy missing song.dsf
try corvin tags export -o song.json song.dsf
echo '[{"file": "song.dsf", "fields": {"TITLE": 3}}]' >bad.json
try corvin tags import bad.json
try corvin tags import cover.png
corvin convert in.flac -o song.1bit >/dev/null 2>&1
try corvin tags set -t TITLE=x song.1bit
cmp song.dsf before.dsf
