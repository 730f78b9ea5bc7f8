# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Sines of 6 dB below full scale on both channels.
for kind in dsf dsdiff 1bit; do make_dsd $kind in.$kind 0.25 >/dev/null; done
for kind in dsf dsdiff 1bit; do try example_1_query in.$kind; done
try example_1_query missing
echo "not DSD at all" >note
try example_1_query note

try example_2_convert in.dsf out.pcm 88200
peaks out.pcm s24
try example_2_convert missing out.pcm 88200
try example_2_convert in.dsf bad.pcm 0
list

try example_3_in_memory

try example_4_tag in.dsf tagged.dsf "A title" "An artist"
try example_4_tag tagged.dsf again.dsf Other Somebody
try example_4_tag in.dsf again.dsf x y
try example_4_tag in.dsdiff new.dsf x y
list
cmp <(tail -c +29 in.dsf) <(head -c "$(stat -c %s in.dsf)" again.dsf | tail -c +29) && echo same sound
[ "$(od -An -t u8 -j 12 -N 8 again.dsf | tr -d ' ')" = "$(stat -c %s again.dsf)" ] && echo size told

# The sound of a 1bit file begins at byte 2048 and is interleaved.
tail -c +2049 in.1bit | example_5_compact_stereo >out.f32
peaks out.f32 f32
