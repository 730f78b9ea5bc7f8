# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Through pipes comes and goes what files hold.
make_dsd dsf a.dsf 0.2
make_wav b.wav 0.2
for kind in wav flac wv dff; do
  corvin convert -q a.dsf -o file.$kind
  corvin convert -q a.dsf -f $kind -o - | cmp - file.$kind
  corvin convert -q - -f $kind -o - <a.dsf | cmp - file.$kind
  cat a.dsf | corvin convert -q - -o again.$kind && cmp again.$kind file.$kind
done
corvin convert -q b.wav -o file.dsf
cat b.wav | corvin convert -q - -f dsf -o - | cmp - file.dsf
flac -s b.wav && corvin convert -q <(cat b.flac) -o through.dsf && cmp through.dsf file.dsf
mkfifo pipe
cat pipe >read.wav &
corvin convert -q a.dsf -f wav -o pipe
wait
cmp read.wav file.wav
(cat a.dsf >pipe &) && corvin convert -q pipe -y -o read.wav && cmp read.wav file.wav

# What goes wrong names the pipe.
try through cat corvin convert - -f wav -o none.wav <<<"no sound"
try corvin convert - -f wav <a.dsf
head -c 60000 a.dsf | try corvin convert - -o cut.wav
closed() { { sleep 0.2; "$@"; echo "exit $?" >&2; } | true; }
closed corvin convert a.dsf -f wav -o -
(export TMPDIR=missing && try corvin convert - -o none.wav <a.dsf)
list
