# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# The sums of DSD are those of its bytes in turn, oldest bit highest, whatever holds them.
make_dsd dsdiff a.dff 0.1
python3 - <<'END'
import hashlib
data = open("a.dff", "rb").read()
print("witness", hashlib.md5(data[data.index(b"DSD ", 100) + 12:]).hexdigest())
END
corvin convert a.dff -o a.dsf 2>/dev/null
corvin convert a.dff -o a.1bit 2>/dev/null
wavpack -q a.dff -o a.wv
corvin tags set -t TITLE=Changed a.dsf 2>/dev/null
try corvin hash a.dff a.dsf a.1bit a.wv
try corvin hash - <a.dsf
try corvin hash --json a.dsf

# Samples that fill no byte, and channels of which two are swapped.
cp a.dsf part.dsf && patch part.dsf 64 0d00010000000000
corvin convert part.dsf -o part.dff 2>/dev/null
corvin convert a.dsf -o swapped.dsf --channels 2,1 2>/dev/null
corvin hash part.dsf part.dff swapped.dsf | cut -c -38 | uniq -c | sed 's/^ *//'

# PCM as FLAC keeps its sum: of each width the witness is another program's.
make_wav in.wav 0.2
for bits in 8 16 24 32; do
  sox -D in.wav -b $bits $bits.wav
  flac --totally-silent $bits.wav -o $bits.flac
  metaflac --show-md5sum $bits.flac
  corvin hash $bits.wav $bits.flac | grep md5
done
corvin convert a.dsf -o 20.flac -b 20 2>/dev/null
metaflac --show-md5sum 20.flac
corvin hash 20.flac | grep md5
for kind in aiff caf w64 rf64; do corvin convert a.dsf -o a.$kind -b 24 2>/dev/null; done
corvin convert a.dsf -o a.wv -b 24 -y 2>/dev/null
corvin convert a.dsf -o a.flac -b 24 2>/dev/null
corvin hash a.flac a.aiff a.caf a.w64 a.rf64 a.wv | cut -c -38 | sort | uniq -c | sed 's/^ *//'
corvin convert a.dsf -o float.wav -b f32 2>/dev/null
python3 - <<'END'
import hashlib
data = open("float.wav", "rb").read()
at = data.index(b"data")
print("witness", hashlib.md5(data[at + 8:at + 8 + int.from_bytes(data[at + 4:at + 8], "little")]).hexdigest())
END
corvin hash float.wav | grep md5

# What has no sum, and what is damaged.
sox in.wav lossy.ogg
head -c 30000 a.dsf >cut.dsf
echo text >text
try corvin hash lossy.ogg
try corvin hash cut.dsf
try corvin hash text a.dsf missing
mkdir -p music/more && cp a.dsf music && cp 16.flac music/more
try corvin hash -R -j 2 music
