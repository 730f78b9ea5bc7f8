# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Each fault by itself and what is done about it; what comes out is in order and has the same sound.
make_dsd dsf a.dsf 0.05
make_dsd dsdiff b.dff 0.05 2822400 3
make_dsd 1bit c.1bit 0.05
corvin tags set -t TITLE=One a.dsf b.dff 2>/dev/null
fixed() {
  try corvin fix "$1" -o "fixed-$1" || return
  corvin check "fixed-$1"
  diff <(corvin hash - <"$1" 2>/dev/null) <(corvin hash - <"fixed-$1") && echo same sound
}
size=$(stat -c %s a.dsf)
cp a.dsf size.dsf && patch size.dsf 12 0100000000000000
cp a.dsf tag.dsf && patch tag.dsf 20 2100000000000000
cp a.dsf untold.dsf && patch untold.dsf 20 0000000000000000
cp a.dsf tail.dsf && printf 'tail' >>tail.dsf
cp a.dsf sound.dsf && patch sound.dsf 84 1122000000000000
head -c 20000 a.dsf >cut.dsf
python3 - <<'END'
data = open("a.dsf", "rb").read()
tag = int.from_bytes(data[20:28], "little")
open("padding.dsf", "wb").write(data[:12] + (tag - 2500).to_bytes(8, "little") + bytes(8) + data[28:tag - 2500])
open("shorttag.dsf", "wb").write(data[:-5])
END
for bad in size tag untold tail sound cut padding shorttag; do fixed $bad.dsf; done
corvin tags fixed-tag.dsf fixed-untold.dsf

# DSDIFF keeps its chunks, known or not.
python3 - <<'END'
def chunk(name, body, size=None): return name + (len(body) if size is None else size).to_bytes(8, "big") + body
data = open("b.dff", "rb").read()
sound = data.index(b"DSD ", 110)
length = int.from_bytes(data[sound + 4:sound + 12], "big")
body = data[sound + 12:sound + 12 + length]
rest = data[sound + 12 + length:]
chnl = data.index(b"CHNL")
def write(name, inner, form=None):
    open(name, "wb").write(b"FRM8" + (len(inner) if form is None else form).to_bytes(8, "big") + inner)
head = data[12:sound]
write("form.dff", data[12:], 77)
stereo = bytearray(head)
stereo[chnl + 4 - 12:chnl + 12 - 12] = (10).to_bytes(8, "big")
stereo[20 + 4:20 + 12] = (94).to_bytes(8, "big")
write("stereo.dff", bytes(stereo) + chunk(b"DSD ", body) + rest)
write("nosize.dff", head + chunk(b"DSD ", body, 0))
marks = chunk(b"EMID", b"odd", 3) + b"\0" + chunk(b"DIAR", (3).to_bytes(4, "big") + b"Who", 7)
write("pads.dff", head + chunk(b"XTRA", b"abc") + chunk(b"DSD ", body[:-2]) +
      chunk(b"DIIN", marks) + chunk(b"COMT", bytes(2)))
write("end.dff", data[12:] + b"rubbish")
END
head -c 20000 b.dff >cut.dff
for bad in form stereo nosize pads end cut; do fixed $bad.dff; done
corvin info fixed-pads.dff | grep "'"

# 1bit keeps its text.
cp c.1bit text.1bit && patch text.1bit 200 "48656c6c6f" && patch text.1bit 12 0000000000000000
cp c.1bit long.1bit && printf 'tail' >>long.1bit
head -c 9000 c.1bit >cut.1bit
for bad in text long cut; do fixed $bad.1bit; done
dd if=fixed-text.1bit bs=1 skip=200 count=5 status=none && echo

# Nothing to mend, nothing to be done, nothing to write.
try corvin fix a.dsf b.dff c.1bit -O none
cp a.dsf rateless.dsf && patch rateless.dsf 56 00000000
cp b.dff packed.dff && patch packed.dff 102 "44535420" && patch packed.dff 122 "44535420"
head -c 60 a.dsf >stub.dsf
make_wav in.wav 0.1
for bad in rateless.dsf packed.dff stub.dsf in.wav missing; do try corvin fix $bad -o none; done
try corvin fix size.dsf
try corvin fix size.dsf -o other.dff
try corvin fix size.dsf -o size.dsf -y
try corvin fix size.dsf -o a.dsf
try corvin fix size.dsf cut.dff stub.dsf -O many -j 2
ls many
corvin fix - -o - <size.dsf >piped.dsf
cmp piped.dsf fixed-size.dsf
[ -e none ] || echo "nothing is left of what failed"
