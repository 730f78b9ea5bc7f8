# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Sines of 6 dB below full scale on both channels.
for kind in dsf dsdiff 1bit; do make_dsd $kind in.$kind 0.25 >/dev/null; done
echo "not DSD at all" >note
head -c 60000 in.dsf >short.dsf

for kind in dsf dsdiff 1bit; do try example_1_info in.$kind; done
try example_1_info short.dsf
try example_1_info missing
try example_1_info note

# Of what stands on standard error the last line: the progress before it goes by pieces, whose number
# says nothing.
to_pcm() {
  example_2_to_pcm "$@" 2>progress
  local code=$?
  tr '\r' '\n' <progress | tail -1 >&2
  rm progress
  return $code
}
try to_pcm in.dsf out.pcm 88200
peaks out.pcm s24
try to_pcm in.dsf bad.pcm 12345
try to_pcm missing bad.pcm 88200
try to_pcm in.dsf no/such/folder.pcm 88200

# The sound of a 1bit file begins at byte 2048 and is interleaved.
tail -c +2049 in.1bit | example_3_stream >out.f32
peaks out.f32 f32

printf '\377\330cover' >cover.jpg
head -c 88200 /dev/zero >silence.pcm
try example_4_from_pcm_with_tags new.dsf "A title" cover.jpg <silence.pcm
try example_4_from_pcm_with_tags no/such/folder.dsf "A title" cover.jpg <silence.pcm
try example_4_from_pcm_with_tags none.dsf "A title" missing.jpg <silence.pcm

try example_5_remux new.dsf new.dff dff
try example_5_remux new.dff again.dsf dsf
cmp new.dsf again.dsf && echo the same file again
try example_5_remux note other.dsf dsf
try example_5_remux short.dsf other.dff dff

# From file to file as one stream; 100 ms into one as from there on.
{ tail -c +2049 in.1bit; tail -c +2049 in.1bit; } | example_3_stream >joined.f32
try example_6_player played.f32 in.dsf in.1bit
cmp joined.f32 played.f32 && echo no gap
try example_6_player late.f32 in.1bit +100 in.dsdiff in.dsf
tail -c $((8 * (2 * 22050 - 8820))) joined.f32 >late
tail -c $((8 * (2 * 22050 - 8820))) late.f32 | cmp - late && echo the same from there on
try example_6_player none.f32 +251 in.dsf
try example_6_player none.f32 in.dsf missing
try example_6_player no/such/folder.f32 in.dsf

list
