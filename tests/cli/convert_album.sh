# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# An album in five pieces, of music: joined, its outputs are the output of the joined album.
said() { sed -E 's/peak -?[0-9.]+ dBFS/peak/'; }
sox /usr/share/games/frozen-bubble/snd/frozen-mainzik-1p.ogg -b 24 -r 44100 whole.wav trim 5 2
mkdir pcm
at=0
for length in 30000 22049 1 11007 25143; do
  sox whole.wav pcm/$((++n)).wav trim ${at}s ${length}s
  at=$((at + length))
done
corvin convert -q whole.wav -o whole.dsf
try through said corvin convert --gapless pcm/*.wav -O dsd
corvin convert -q whole.dsf -r 44100 -o whole.flac
try through said corvin convert --gapless dsd/*.dsf -O back -r 44100 -j 2
sox whole.flac whole-back.wav
sox back/*.flac joined.wav
cmp whole-back.wav joined.wav

# Without that each piece begins and ends in silence.
corvin convert -q dsd/*.dsf -O apart -r 44100
sox apart/*.flac apart.wav
cmp -s whole-back.wav apart.wav && echo "no difference"

# Such joints there are for the engine's own rates, and not from DSD to other DSD.
for track in pcm/*.wav; do sox $track -r 32000 low-${track#pcm/}; done
try corvin convert --gapless low-1.wav low-2.wav -O low
try corvin convert --gapless dsd/1.dsf dsd/2.dsf -O low -r 32000
try corvin convert --gapless dsd/1.dsf dsd/2.dsf -O low -f dsf -r dsd128
# One gain for the album, or one a piece.
gains() { sed -E 's/.*(peak .*)/\1/'; }
try through gains corvin convert --gain auto --group all dsd/1.dsf dsd/4.dsf -O loud -y
try through gains corvin convert --gain auto dsd/1.dsf dsd/4.dsf -O loud -y
try through gains corvin convert --gain auto pcm/1.wav -O loud -f dff
