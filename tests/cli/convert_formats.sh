# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# facts FILE...: what a reader that is not ours makes of each.
facts() {
  for file; do
    [ "${file##*.}" = wv ] && wvunpack -f "$file" | sed 's/;[0-9a-f]*;[0-9];0x.*;/ /' && continue
    mediainfo --Output="Audio;$file: %Format%, %BitDepth% bits, %Channel(s)% channels, %SamplingRate% Hz" "$file"
  done
}

# sound FILE: what a decoder that is not ours makes of it, as a WAV file's bytes of sound.
sound() {
  case $1 in
  *.flac) flac --totally-silent -d -c "$1" ;;
  *.wv) wvunpack -q "$1" -o - ;;
  *) cat "$1" ;;
  esac | python3 -c 'import sys
data = sys.stdin.buffer.read()
at = data.index(b"data")
sys.stdout.buffer.write(data[at + 8 : at + 8 + int.from_bytes(data[at + 4 : at + 8], "little")])'
}

make_dsd dsf in.dsf 0.1
make_dsd dsf six.dsf 0.1 2822400 6
endings="flac rf64 w64 aiff caf wv"

# The same samples in every kind of file, whoever reads them; and the same bytes when made again.
for bits in 16 24 32 float; do
  corvin convert in.dsf -o wav$bits.wav -b $bits 2>/dev/null
  corvin convert wav$bits.wav -o wav$bits.dsf --modulator standard 2>/dev/null
  for ending in $endings; do
    [ $bits = float ] && [ $ending = flac ] && continue
    out=in$bits.$ending
    corvin convert in.dsf -o $out -b $bits 2>/dev/null
    corvin convert in.dsf -o again.$ending -b $bits -y 2>/dev/null
    cmp $out again.$ending
    grep -q PEAK $out && echo "states when it was made"
    facts $out
    case $ending in
    flac) flac -ts $out && cmp <(sound $out) <(sound wav$bits.wav) ;;
    wv) wvunpack -qv $out && cmp <(sound $out) <(sound wav$bits.wav) ;;
    esac
    corvin convert $out -o back.dsf -y --modulator standard 2>/dev/null
    cmp back.dsf wav$bits.dsf
  done
done

# Speakers are told wherever there is a place for them.
for ending in wav flac rf64 wv; do
  corvin convert six.dsf -o six.$ending 2>/dev/null
  mediainfo --Output="Audio;six.$ending: %ChannelLayout%" six.$ending
done

# What a kind cannot hold, and endings that stand for none.
try corvin convert in.dsf -o no.flac -b float
make_dsd dsf long.dsf 0.1
patch long.dsf 64 "0000000003000000"
truncate -s 6G long.dsf
try corvin convert long.dsf -o no.aif -b 32 -r 176400
for out in no.mp3 no.dsd no.; do try corvin convert in.dsf -o $out; done
try corvin convert in.dsf -o upper.FLAC --engine classic -b 16
facts upper.FLAC
[ -z "$(list | grep ^no)" ]
