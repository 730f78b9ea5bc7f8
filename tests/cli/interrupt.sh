# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# A file of hours, nearly all of it a hole, so that every conversion is caught in the middle.
make_dsd dsf long.dsf 1
patch long.dsf 64 "0000000002000000"
truncate -s 3G long.dsf
mkdir out
echo old >out/old.wav
python3 "$CASES/interrupt.py"
list out
cat out/old.wav
