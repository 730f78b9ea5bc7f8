# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_wav in.wav 0.2
mkdir out
echo old >out/out.dsf
# refused IN OPTION...: the conversion fails without a trace, and an older output stays.
refused() {
  try corvin convert "$@" -y
  list out
  cat out/out.dsf
}

# What the tool will not do.
for name in out/out out/out.wav out/new.mp3 ""; do try corvin convert in.wav -o "$name"; done
try corvin convert in.wav -o out/out.dsf
try corvin convert in.wav -o out/out.dsf -b 24
for rate in dsd32 dsd dsd64x 44100 3000000 24576001 -1 x; do
  try corvin convert in.wav -o out/out.dsf -r $rate
done
make_wav many.wav 0.01 44100 8
try corvin convert many.wav -o out/many.dsf
make_dsd dsf in.dsf 0.01
try corvin convert in.dsf -o out/new.dff -b 16
try corvin convert in.dsf -o out/new.dff -r 44100
try corvin convert in.dsf -o out/new.wav -r dsd64
try corvin convert in.dsf -o out/new.wav --modulator best
ln -s in.wav link.dsf
try corvin convert in.wav -o link.dsf -y

# What the library can not do.
make_wav low.wav 0.1 && patch low.wav 24 3f1f0000
make_wav nine.wav 0.1 44100 9
refused low.wav -o out/out.dsf
refused nine.wav -o out/out.dsf

# Damaged files: what is left of the sound is worth having.
head -c 30 in.wav >stub.wav
refused stub.wav -o out/out.dsf
head -c 20000 in.wav >short.wav
try corvin convert short.wav -o short.dsf
make_wav noise.wav 2 44100 2 24
flac --totally-silent noise.wav -o whole.flac
head -c 42 whole.flac >stub.flac
refused stub.flac -o out/out.dsf
head -c 150000 whole.flac >short.flac
some_time() { sed -E 's/0:00:0[01]\.[0-9]{3}/some time/'; }
try through some_time corvin convert short.flac -o short.dff
corvin info short.dff >/dev/null
# A stream whose encoder could not go back to state the length.
cp whole.flac open.flac && patch open.flac 21 "7000000000"
try corvin convert open.flac -o open.dsf

# Places where nothing can be written.
ln -s /dev/full full.dsf
try corvin convert in.wav -o full.dsf
[ -c /dev/full ] || echo "a device was replaced"
refused in.wav -o missing/out.dsf
make_wav second.wav 1
for kind in dsf dff 1bit; do
  cp out/out.dsf out/out.$kind 2>/dev/null
  (ulimit -f 200 && refused second.wav -o out/out.$kind)
done

# An interrupt.
make_wav long.wav 60
env --default-signal corvin convert long.wav -o out/out.dsf -y &
tool=$!
for _ in $(seq 600); do
  find out -name '.*.corvin-*' -size +64k | grep -q . && break
  sleep 0.02
done
kill -INT $tool
wait $tool
echo "exit $?"
list out
