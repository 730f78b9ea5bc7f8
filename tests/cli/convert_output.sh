# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_dsd dsf in.dsf 0.1
quietly() { "$@" 2>/dev/null; }

# A file that is there is kept unless -y says otherwise.
echo old >out.wav
try corvin convert in.dsf -o out.wav
cat out.wav
try quietly corvin convert in.dsf -o out.wav -y
wav_facts out.wav | sed -n 1p
(umask 027 && quietly corvin convert in.dsf -o private.wav && stat -c %a private.wav out.wav)

# The input is kept whatever it is called.
ln -s in.dsf link
ln in.dsf hard
before=$(cksum <in.dsf)
for name in in.dsf ./in.dsf link hard; do try corvin convert in.dsf -o $name -f dsf -y; done
[ "$(cksum <in.dsf)" = "$before" ] || echo "the input has changed"

# A link stays a link.
mkdir shelf
echo old >shelf/out.wav
ln -s shelf/out.wav there
ln -s shelf/missing.wav nowhere
try quietly corvin convert in.dsf -o there -f wav -y
[ -L there ] && wav_facts shelf/out.wav | sed -n 1p
try corvin convert in.dsf -o nowhere -f wav

# Places where nothing can be written.
for name in shelf missing/out.wav in.dsf/out.wav shelf/new/ /proc/out.wav /dev/full \
  $(printf 'x%.0s' {1..256}); do
  try corvin convert in.dsf -o $name -f wav -y 2>&1 | sed -E 's/x{256}/x.../'
done
[ -c /dev/full ] || echo "a device was replaced"
quietly corvin convert in.dsf -f wav -o $(printf 'x%.0s' {1..255}) && rm x*

# terminal COMMAND...: runs it on a terminal of its own, where it shows percentages.
terminal() {
  python3 -c 'import os, pty, sys
sys.exit(os.waitstatus_to_exitcode(pty.spawn(sys.argv[1:])))' "$@" | tr '\r' '\n'
  return ${PIPESTATUS[0]}
}

# The disk fills up.
(ulimit -f 20 && try corvin convert in.dsf -o out.wav -y)
wav_facts out.wav | sed -n 1p

# It does so early in much sound: the tool neither hangs nor converts all the rest for nothing.
make_dsd dsf long.dsf 0.1
patch long.dsf 64 "0000000001000000"
truncate -s 2G long.dsf
(ulimit -f 20 && terminal corvin convert long.dsf -o out.wav -y) >shown
echo "exit $?"
grep -o 'corvin:.*large' shown
grep '[5-9][0-9] %' shown
grep -q '[0-9] %' shown || echo "no progress on a terminal"
rm long.dsf shown

# What is said is no output: a full disk under it does not fail the conversion.
untold() { "$@" 2>/dev/full; }
try untold corvin convert in.dsf -o told.wav
list . shelf
