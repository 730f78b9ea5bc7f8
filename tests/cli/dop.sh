# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

dsd_bits() { python3 "$CASES/dsd_bits.py" "$@"; }
same() { dsd_bits --same "$@"; }

make_dsd dsf in.dsf 0.02
corvin tags set -t TITLE=Bits in.dsf
try corvin dop encode in.dsf -o in.flac --verify
flac -ts in.flac && mediainfo --Output='Audio;%SamplingRate% Hz, %BitDepth% bits' in.flac
# Frames as the format demands them, by programs that know nothing of ours.
flac -ds --force-raw-format --endian=little --sign=signed in.flac -o in.raw
python3 - in.raw <(dsd_bits in.dsf) <<'EOF'
import sys
raw = open(sys.argv[1], "rb").read()
bits = [line.rstrip("\n") for line in open(sys.argv[2])]
channels = len(bits)
frames = len(raw) // (3 * channels)
wanted = bytearray()
for frame in range(frames):
    for channel in bits:
        sixteen = int(channel[16 * frame : 16 * frame + 16], 2)
        wanted += bytes([sixteen & 255, sixteen >> 8, 0xFA if frame % 2 else 0x05])
print("%d frames, %s" % (frames, "right" if wanted == raw else "wrong"))
EOF
try corvin dop decode in.flac -o out.dsf --verify
same in.dsf out.dsf
corvin tags out.dsf

# Every kind, and DSD of several rates and channels.
make_dsd dsdiff six.dff 0.01 5644800 6
for kind in wav rf64 w64 aiff caf wv; do
  try corvin dop encode six.dff -o six.$kind
  try corvin dop decode six.$kind -o six-$kind.dff --strict
done
same six.dff six-*.dff
cmp <(wvunpack -qq -r six.wv -o -) <(sox six.wav -t raw - 2>/dev/null) && echo "wvunpack and sox agree"
make_dsd 1bit fast.1bit 0.01 12288000 1
try corvin dop encode fast.1bit
try corvin dop decode fast.flac -o fast.dsf
same fast.1bit fast.dsf

# Half a frame at the end; through pipes; several at once.
corvin convert in.dsf -o odd.dsf --until 12345 -q
try corvin dop encode odd.dsf -o odd.wav
try corvin dop decode odd.wav -o padded.dsf
dsd_bits odd.dsf padded.dsf | python3 -c '
for line in __import__("sys").stdin.read().split(): print(len(line), line[:12345] == line[12345:24690], line[24690:])'
corvin dop encode - -f wav -o - <in.dsf 2>/dev/null | try corvin dop decode - -o piped.dff
same in.dsf piped.dff
mkdir many && cp odd.wav many/a.wav && cp in.flac many/b.flac
try corvin dop decode -R many -O made -f dff
list made

# Frames around the DSD, without markers, missing in between, and sound that only follows.
make_dsd dsf mono.dsf 0.01 2822400 1
corvin dop encode mono.dsf -o mono.wav -q
spoil() {
  python3 - mono.wav "$1" "$2" <<'EOF'
import struct, sys
data = open(sys.argv[1], "rb").read()
at = data.index(b"data") + 8
head, sound = data[:at], data[at:]
frames = [sound[i : i + 3] for i in range(0, len(sound), 3)]
exec(sys.argv[3])
sound = b"".join(frames)
open(sys.argv[2], "wb").write(head[:4] + struct.pack("<I", len(head) + len(sound) - 8) + head[8:-4]
                              + struct.pack("<I", len(sound)) + sound)
EOF
}
spoil around.wav 'frames = [bytes(3)] * 99 + frames + [bytes(3)] * 7'
try corvin dop decode around.wav -o around.dsf --strict
same mono.dsf around.dsf
spoil middle.wav 'frames[700:750] = [bytes(3)] * 50; frames[1000] = b"\1\2\3"; del frames[1500]'
try corvin dop decode middle.wav -o middle.dsf
dsd_bits mono.dsf middle.dsf | python3 -c '
line = __import__("sys").stdin.readline().rstrip()
a, b = line[:28224], line[28224:]
quiet = "01101001" * 2
print(b == a[:11200] + quiet * 50 + a[12000:16000] + quiet + a[16016:24000] + a[24016:])'
try corvin dop decode middle.wav -o strict.dsf --strict
spoil music.wav 'frames = [b"\1\2\3"] * 10 + frames[:1000] + [b"\1\2\3"] * 500'
try corvin dop decode music.wav -o music.dsf
spoil short.wav 'frames = frames[:3]'
try corvin dop decode short.wav -o short.dsf
spoil chance.wav 'frames = [b"\1\2\3"] * 100 + frames[:3]'
try corvin dop decode chance.wav -o none.dsf
head -c 3000 mono.wav >cut.wav
try corvin dop decode cut.wav -o cut.dsf

# What is no DoP, and what cannot become it.
make_wav pcm.wav 0.1 176400 2 24
make_wav narrow.wav 0.1 176400 2 16
for file in pcm.wav narrow.wav in.dsf missing.wav; do try corvin dop decode $file -o none.dsf; done
try corvin dop encode pcm.wav -o none.wav
try corvin dop encode in.dsf -o none.dff
try corvin dop decode in.flac -o none.wav
try corvin dop encode in.dsf -o in.flac
make_dsd dsf slow.dsf 0.01 2822401
try corvin dop encode slow.dsf -o none.wav
try corvin dop
list | grep none
for way in encode decode; do corvin dop $way --help | awk 'length > 80'; done
