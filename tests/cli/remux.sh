# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Every container to every other: the same sound and tags, found the same by reading it back.
make_dsd dsdiff a.dff 0.1
corvin tags set -t TITLE=One -a ARTIST=A a.dff 2>/dev/null
try corvin remux a.dff -o a.dsf
try corvin remux a.dsf -o a.1bit
try corvin remux a.1bit -o back.dff
wavpack -q a.dff -o a.wv
try corvin remux a.wv -o w.dsf
corvin hash a.dff a.dsf a.1bit back.dff w.dsf | cut -c -38 | sort | uniq -c | sed 's/^ *//'
corvin tags a.dff a.dsf w.dsf
corvin remux - -f dff -o - <a.dsf >piped.dff && cmp piped.dff <(corvin remux a.dsf -f dff -o - 2>/dev/null)

# What the target cannot hold is named.
make_dsd dsf six.dsf 0.05 2822400 6
cp a.dsf part.dsf && patch part.dsf 64 0d00010000000000
python3 - <<'END'
data = bytearray(open("a.dff", "rb").read())
comment = bytes([0, 1, 7, 207, 1, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 3]) + b"odd\0"
data += b"XTRA" + bytes(8) + b"COMT" + len(comment).to_bytes(8, "big") + comment + b"ABSS" + (8).to_bytes(8, "big") + bytes(8)
data[4:12] = (len(data) - 12).to_bytes(8, "big")
open("more.dff", "wb").write(data)
END
try corvin remux six.dsf -o six.1bit
try corvin remux part.dsf -o part.dff
try corvin remux more.dff -o more.dsf
make_dsd dsdiff eight.dff 0.05 2822400 8
try corvin remux eight.dff -o eight.dsf

# Many at once.
mkdir -p music/more && cp a.dff music && cp a.dsf music/more/b.dsf && echo x >music/x.flac
try corvin remux -R -j 2 music -O out -f 1bit
find out | sort
try corvin remux -R music -O out -f dff

# Refused, damaged, lying: nothing is left.
make_wav in.wav 0.1
head -c 30000 a.dsf >cut.dsf
cp a.dff packed.dff && patch packed.dff 98 "44535420" && patch packed.dff 118 "44535420"
try corvin remux in.wav -o in.dsf
try corvin remux a.dff -o a.flac
try corvin remux a.dff -f flac
try corvin remux a.dff
try corvin remux a.dff -o a.dsf
try corvin remux a.dff -o a.dff -y
try corvin remux packed.dff missing -O gone -f dsf
try corvin remux cut.dsf -o cut.dff
try corvin remux cut.dsf -o strict.dff --strict
full() { (ulimit -f 8; "$@"); }
try full corvin remux a.dff -o full.dsf
list
