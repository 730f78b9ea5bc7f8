# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_dsd dsf good.dsf 0.01
echo "no sound here" >text
: >empty
mkdir directory
cp good.dsf silent.dsf && patch silent.dsf 52 00000000  # no channels
cp good.dsf timeless.dsf && patch timeless.dsf 56 00000000  # no rate
head -c 60 good.dsf >stub.dsf
cp good.dsf vast.dsf && patch vast.dsf 64 ffffffffffffffff

for bad in missing text empty directory silent.dsf timeless.dsf stub.dsf; do
  try corvin info $bad
  try corvin info $bad --engine classic
done
try corvin info text good.dsf missing
try corvin info vast.dsf
try corvin info vast.dsf --engine classic

# Nobody takes the answer.
untold() { "$@" >/dev/full; }
try untold corvin info good.dsf
{
  sleep 0.3  # until the reader is gone
  corvin info good.dsf
  echo "exit $?" >&2
} | :
