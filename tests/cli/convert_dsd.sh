# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# The tones are at -6 dBFS. round_trip IN OUT [OPTION...]
round_trip() {
  try corvin convert "$@" && corvin info "${3-}" | sed -n '2,$p'
  corvin convert "$3" -o back.wav -y -r 44100 -b 16 >/dev/null 2>&1
  wav_facts back.wav
}

make_wav stereo.wav 0.5
for out in stereo.dsf stereo.DFF stereo.1bit; do round_trip stereo.wav -o $out; done
make_wav mono.wav 0.2 96000 1 32
for out in mono.dsf mono.dff mono.1bit; do round_trip mono.wav -o $out -r dsd128; done
make_wav six.wav 0.2 48000 6 24
for out in six.dsf six.dff six.1bit; do round_trip six.wav -o $out; done
round_trip stereo.wav -o high.dsf -r dsd512 --modulator high
round_trip stereo.wav -o other.dsf -r 3072000 --modulator best --gain 0
try corvin convert stereo.wav -o loud.dsf --gain 12

# What outside readers find, above all in the headers of other than two channels.
for file in stereo.dsf six.dsf stereo.DFF mono.dff six.dff; do
  mediainfo --Output='Audio;%Channel(s)% channels, %SamplingRate% Hz, %Duration% ms' $file
done

# From other files the same comes out.
flac --totally-silent stereo.wav -o same.flac
try corvin convert same.flac -o same.dsf
cmp same.dsf stereo.dsf

make_wav none.wav 0
try corvin convert none.wav -o none.dsf

# DSD to DSD: bit for bit where nothing else is asked for, with its tags.
round_trip stereo.dsf -o copy.dff
try corvin convert copy.dff -o again.dsf
cmp stereo.dsf again.dsf
flac --totally-silent -f -T TITLE=Tone stereo.wav -o named.flac
try corvin convert named.flac -o named.dff
try corvin convert named.dff -o named.dsf
try corvin tags named.dsf
round_trip stereo.dsf -o other-rate.dff -r dsd128
round_trip stereo.dsf -o other-family.dsf -r 6144000
try corvin convert stereo.dsf -o softer.dsf --gain -3 --modulator high
