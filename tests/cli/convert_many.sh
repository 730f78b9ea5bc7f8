# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

mkdir -p music/one/disc music/.hidden music/empty
make_dsd dsf music/one/a.dsf 0.1
make_dsd dsdiff music/one/disc/b.dff 0.1 5644800
make_wav music/one/c.wav 0.1
cp music/one/a.dsf music/.hidden/no.dsf
echo text >music/one/notes.txt
echo broken >music/one/d.dsf
# PCM is taken from directories only where it becomes DSD; what cannot be read stops nothing.
try corvin convert -R music -O out
(cd out && find . -type f | sort)
try corvin convert -R music -O dsd -f dff -j 3
(cd dsd && find . -type f | sort)
try corvin convert music
try corvin convert -R music/empty
try corvin convert music/one/a.dsf music/one/c.wav -o both.dsf
# The same name for two inputs: the first has it.
cp music/one/a.dsf c.dsf
cp music/one/c.wav c.wav
try corvin convert c.dsf c.wav -f dff -O same
try corvin convert c.dsf -f wav -o c.flac
try corvin convert c.wav -f flac

# What is left of a damaged file is converted, and told of by the exit code, unless that is too little.
head -c 60000 music/one/a.dsf >cut.dsf
try corvin convert cut.dsf
try corvin convert cut.dsf --strict -o strict.flac
head -c 10000 c.wav >cut.wav
try corvin convert cut.wav -o cut-wav.dsf
try corvin convert cut.wav -o strict.dsf --strict
try corvin convert cut.dsf c.dsf -O two
try corvin convert cut.dsf missing.dsf -O two -y
list

# Stretches, by samples and by time; channels.
facts() { try corvin convert -q c.dsf -y -o part.wav "$@" && wav_facts part.wav; }
facts --skip 141120
facts --skip 0.05s --until 0:00.075
facts --channels 2,1
facts --channels 1
try corvin convert c.wav -o part.dsf --until 0.05s --channels 2
try corvin convert c.dsf -y -o part.dsf --skip 3 --until 100003 --verify
try corvin convert c.dsf -o no.wav --skip 1:00
try corvin convert c.dsf -o no.wav --channels 3
try corvin convert c.dsf -o no.wav --skip 1:60
try corvin convert c.dsf -o no.wav --channels 0

# Rates, widths and levels in all their spellings.
for rate in 44.1k 44.1KHZ 44100 44100Hz; do corvin convert -q c.dsf -r $rate -y -o rate-$rate.wav; done
cksum rate-*.wav | cut -d' ' -f1,2 | uniq -c | wc -l
for rate in 8000 32000 37.8k 50k 100000 768000; do
  corvin convert -q c.dsf -r $rate -o any.wav -y --verify && wav_facts any.wav
done
try corvin convert -q c.dsf -r dxd -b 20 -o dxd.flac --verify
metaflac --show-sample-rate --show-bps dxd.flac
try corvin convert c.dsf -r 7999 -o no.wav
for gain in +6 6dB "6 dB" -6DB; do corvin convert c.wav -o gain.dsf -y --gain "$gain" 2>&1 | grep -o "peak.*"; done
for rate in DSD128 128 dsd128 5.6448M; do corvin convert c.wav -y -o rate.dsf -r $rate 2>&1 | grep -o "DSD128"; done

# The band: a tone at 30 kHz is kept, or not.
sox -r 192000 -n -b 24 tone.wav synth 0.2 sine 30000 gain -6
corvin convert -q tone.wav -o tone.dsf -r dsd128
level() { sox "$1" -n trim 0.05 0.1 stats 2>&1 | sed -nE 's/^RMS lev dB +(-?[0-9]+).*/\1 dB/p'; }
for band in off 40k 20k:25k 20000; do corvin convert -q tone.dsf -y -r 192k --lowpass $band -o band.wav && level band.wav; done
try corvin convert tone.dsf -o no.wav --lowpass 20k:20.1k
try corvin convert tone.dsf -o no.wav --lowpass 20k:10k

# A disk that changes what is written is found out.
cat >disk.c <<'C'
#define _GNU_SOURCE
#include <dlfcn.h>
#include <string.h>
#include <unistd.h>
static ssize_t (*real)(int, const void*, size_t, off64_t);
ssize_t pwrite64(int descriptor, const void* from, size_t bytes, off64_t at) {
  char copy[1 << 20];
  if (!real) real = dlsym(RTLD_NEXT, "pwrite64");
  if (bytes < 5000 || bytes > sizeof copy) return real(descriptor, from, bytes, at);
  memcpy(copy, from, bytes);
  copy[4000] ^= 1;
  return real(descriptor, copy, bytes, at);
}
C
cc -shared -fPIC -o disk.so disk.c -ldl
export ASAN_OPTIONS=verify_asan_link_order=0
for way in "c.dsf -o bad.dff" "c.wav -o bad.dsf"; do
  try env LD_PRELOAD=./disk.so corvin convert $way --verify
  try env LD_PRELOAD=./disk.so corvin convert -q $way
done
