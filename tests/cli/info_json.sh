# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# What the headers tell, for programs: each container with tags, and PCM.
make_dsd dsf a.dsf 0.01
make_dsd dsdiff b.dff 0.01 5644800 6
make_dsd 1bit c.1bit 0.01 2822400 1
make_wav in.wav 0.1
flac --totally-silent --no-padding in.wav -o d.flac
printf 'not really a picture' >cover.jpg
corvin tags set -t TITLE=One -a ARTIST=A -a ARTIST=B --picture cover.jpg a.dsf 2>/dev/null
corvin tags set -t "TITLE=$(printf 'odd\001')" b.dff d.flac 2>/dev/null
for file in a.dsf b.dff c.1bit d.flac; do try corvin info --json $file; done
try corvin info a.dsf b.dff c.1bit in.wav d.flac

# What came through a pipe, and what is packed.
wavpack -q b.dff -o b.dff.wv
try corvin info - b.dff.wv <c.1bit
mkdir -p music/more && cp a.dsf music && cp d.flac music/more && echo x >music/notes.txt
corvin info -R --json music | python3 -c '
import json, sys
for one in json.load(sys.stdin): print(one["file"], one["container"])'

# Headers without sense: a clear word, never a crash.
make_dsd dsdiff good.dff 0.01
cp good.dff rateless.dff && patch rateless.dff 60 00000000
cp good.dff packed.dff && patch packed.dff 98 "44535420" && patch packed.dff 118 "44535420"
cp packed.dff unrated.dff && patch unrated.dff 48 58
cp good.dff form.dff && patch form.dff 12 "41494646"
cp good.dff many.dff && patch many.dff 76 0041
cp a.dsf coded.dsf && patch coded.dsf 44 07000000
cp a.dsf many.dsf && patch many.dsf 52 41000000
cp good.dff swallowed.dff && patch swallowed.dff 36 7fffffffffffffff
for bad in rateless.dff packed.dff unrated.dff form.dff many.dff coded.dsf many.dsf; do
  try corvin info $bad
done
try corvin info --json unrated.dff packed.dff missing
try corvin info --json a.dsf --engine classic

# Everything odd is told: sizes, the end, chunks, tags.
cp a.dsf odd.dsf && patch odd.dsf 12 0100000000000000 && printf 'tail' >>odd.dsf
head -c $(($(stat -c %s good.dff) - 100)) good.dff >cut.dff
python3 - <<'END'
data = bytearray(open("a.dsf", "rb").read())
size = int.from_bytes(data[20:28], "little")
open("unpadded.dsf", "wb").write(bytes(data[:size - 500]))
END
for odd in odd.dsf cut.dff swallowed.dff unpadded.dsf; do try corvin info $odd; done
