# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

dsd_bits() { python3 "$CASES/dsd_bits.py" "$@"; }
# whole_of FILE PIECE...: whether the pieces one behind the other are the file, no sample more or less.
whole_of() {
  local whole=$1
  shift
  cmp <(dsd_bits "$whole") <(dsd_bits "$@") && echo "$# pieces are $whole"
}

# By the sheet beside the file, with what stands before the first track; every container, and back.
make_dsd dsf album.dsf 0.5
corvin tags set -t TITLE=Whole -t LABEL=Us -t REPLAYGAIN_TRACK_GAIN=1 album.dsf
cat >album.cue <<'EOF'
PERFORMER "Band"
TITLE "Album"
REM DATE 1999
FILE "album.wav" WAVE
  TRACK 01 AUDIO
    TITLE "One"
    INDEX 01 00:00:04
  TRACK 02 AUDIO
    TITLE "Two"
    PERFORMER "Guest"
    INDEX 00 00:00:15
    INDEX 01 00:00:17
EOF
try corvin split album.dsf -O tracks --verify
whole_of album.dsf tracks/*
corvin tags tracks/02*
for kind in dff 1bit; do
  try corvin split album.dsf -O $kind -f $kind --name '{track}'
  whole_of album.dsf $kind/*
  try corvin join $kind/* -o $kind.dsf --verify
done
try corvin join tracks/* -o joined.dsf --cue joined.cue
dsd_bits --same album.dsf joined.dsf dff.dsf 1bit.dsf
cat joined.cue
corvin tags joined.dsf
try corvin split joined.cue -O again --name '{track} {artist}'
whole_of album.dsf again/*
try corvin split album.dsf -O dropped --pregap drop
dsd_bits dropped/* | awk '{ print length }'

# At any sample: DSF cuts there, the others at the next byte; joined, the bits move.
at=1001,1009,0.25s
for kind in dsf dff 1bit; do
  try corvin split album.dsf --at $at -O at -f $kind --name '{track} {title}'
  for piece in at/*.$kind; do dsd_bits "$piece" | awk 'NR == 1 { print length }'; done
  whole_of album.dsf at/*.$kind
done
try corvin join at/1*.dsf at/2*.dff -o mixed.dff
cmp <(dsd_bits mixed.dff) <(dsd_bits at/1*.dsf at/2*.dff | sed 's/$/1101001/') && echo "bits moved"
for kind in dsf dff; do
  try corvin join at/*.dsf -o odd.$kind --cue odd.cue -y
  dsd_bits --same album.dsf odd.$kind
done
make_dsd dsdiff six.dff 0.05 5644800 6
try corvin split six.dff --at 5000 -O six -f dsf
try corvin join six/* -o six.dsf
dsd_bits --same six.dff six.dsf
corvin join - six/02* -f dff -o - <six/01* 2>/dev/null >piped.dff
dsd_bits --same six.dff piped.dff

# PCM keeps its format, for readers that are not ours.
raw() { sox "$1" -t raw - 2>/dev/null; }
make_wav a.wav 0.3 44100 2 24
for kind in flac wav rf64 w64 aiff caf wv; do
  try corvin split a.wav --at 3000,0.2s -O pcm -f $kind --name '{track}' --verify
  try corvin join pcm/1.$kind pcm/2.$kind pcm/3.$kind -o pcm.$kind --verify
  case $kind in
    wv) wvunpack -qq -r pcm.wv -o pcm.raw && cmp pcm.raw <(raw a.wav) ;;
    *) cmp <(raw pcm.$kind) <(raw a.wav) ;;
  esac
done
flac -ts pcm/*.flac pcm.flac && mediainfo --Output='Audio;%BitDepth% bits, %SamplingCount%' pcm/1.flac
sox -q -D a.wav -b 32 -e floating-point f32.wav
sox -q -D a.wav -b 8 b8.wav
sox -q b8.wav b8.flac
corvin convert album.dsf -o b20.flac -b 20 -r 44100 -q
for file in f32.wav b8.flac b20.flac; do
  try corvin split $file --at 400 -O formats --name "${file%.*} {track}"
  try corvin join formats/${file%.*}* -o joined-$file
  raw joined-$file | cmp - <(raw $file)
  mediainfo --Output='Audio;%BitDepth% bits' joined-$file
done
try corvin split b8.wav --at 400 -O formats
try corvin join formats/0* -o joined-b8.wav
raw joined-b8.wav | cmp - <(sox -D b8.wav -b 16 -e signed -t raw - 2>/dev/null)

# Sheets within files, and one for several files.
cp a.wav tagged.wav
corvin tags set -t "CUESHEET=$(sed 's/00:15/00:08/; s/00:17/00:09/' album.cue)" tagged.wav
try corvin split tagged.wav -O tagged
corvin tags tagged/01* | grep -c CUESHEET
printf 'FILE "a.wav" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 01 00:00:10\n' >block.cue
flac -s --cuesheet=block.cue a.wav -o block.flac && mv block.cue away.cue
try corvin split block.flac -O block
cmp <(cat <(raw block/01*) <(raw block/02*)) <(raw a.wav) && echo "the block's tracks are the whole"
cp a.wav b.wav
printf '%s\n' 'FILE "a.wav" WAVE' 'TRACK 01 AUDIO' 'INDEX 01 00:00:00' 'TRACK 02 AUDIO' 'INDEX 00 00:00:15' \
  'FILE "b.wav" WAVE' 'INDEX 01 00:00:00' 'TRACK 03 AUDIO' 'INDEX 01 00:00:10' >sides.cue
try corvin split sides.cue -O sides
try corvin split b.wav --cue sides.cue -O sides -y

# What does not fit, is damaged, or stands there already.
try corvin split album.dsf -O tracks
try corvin split album.dsf -O none -f flac
for at in 0 1s 0.4s,0.3s x '' 600000000; do try corvin split album.dsf --at "$at" -O none; done
head -c 120000 album.dsf >cut.dsf
try corvin split cut.dsf --cue album.cue -O none
try corvin split cut.dsf --at 0.1s -O cut
make_wav other.wav 0.1 48000 2 24 && make_wav mono.wav 0.1 44100 1 24 && make_wav narrow.wav 0.1
make_dsd dsf fast.dsf 0.01 5644800
for file in other.wav mono.wav narrow.wav album.dsf missing.wav; do try corvin join a.wav $file -o none.wav; done
try corvin join album.dsf fast.dsf -o none.dsf
try corvin join album.dsf -o none.wav
try corvin join a.wav -o none.what
try corvin join a.wav b.wav -o b.wav -y
try corvin join a.wav b.wav -o - --cue x.cue
list none 2>/dev/null
for command in split join; do corvin $command --help | awk 'length > 80'; done
