# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_dsd dsf in.dsf 0.1
quietly() { "$@" 2>/dev/null; }
quietly corvin convert in.dsf -o plain.wav

# Standard output: a file that is ours from its beginning can be gone back over, nothing else can.
to_file() { "$@" >shown.wav; }
behind() { (echo before && "$@") >shown; }
appended() { "$@" >>shown; }
into_pipe() { "$@" | cat >shown; return "${PIPESTATUS[0]}"; }
over_input() { "$@" 1<>in.dsf; }
try quietly to_file corvin convert in.dsf -o - -f wav
cmp shown.wav plain.wav
# What stands there already is kept, and a pipe has no beginning to go back to.
for way in behind appended into_pipe; do
  echo before >shown
  try $way corvin convert in.dsf -o - -f wav -y
  tail -c "$(stat -c %s plain.wav)" shown | cmp - plain.wav
  head -c 6 shown | grep -a before
done
try over_input corvin convert in.dsf -o - -f wav -y
(quietly corvin convert in.dsf -o - -f wav && echo behind) >both
cmp -n "$(stat -c %s plain.wav)" both plain.wav
tail -c 7 both
python3 -c 'import os, pty
print(os.waitstatus_to_exitcode(pty.spawn(["corvin", "convert", "in.dsf", "-o", "-", "-f", "wav"])))' | tr -d '\r'

# Words go nowhere rather than into a file that is opened in the place of a closed stream.
(exec 2>&- && corvin convert in.dsf -o closed.wav)
cmp closed.wav plain.wav
unheard() { "$@" >&-; }
try unheard corvin info in.dsf
(exec <&- >&- 2>&- && corvin convert in.dsf -o closed.wav -y)
cmp closed.wav plain.wav

# What replaces a file keeps its mode and owner. That it is write-protected is heeded, by the superuser
# too, who could do otherwise.
for mode in 640 606 400; do
  echo old >old.wav
  chmod $mode old.wav
  [ "$(id -u)" != 0 ] || chown 1:1 old.wav
  stat -c '%u:%g' old.wav >owner
  try quietly corvin convert in.dsf -o old.wav -y
  stat -c %a old.wav
  stat -c '%u:%g' old.wav | cmp - owner
  rm -f old.wav
done
echo old >old.json
chmod 444 old.json
try corvin tags export in.dsf -o old.json -y
try corvin tags export in.dsf -o old.json -y --force
stat -c '%a %s' old.json

# What a tool that was killed has left goes when the same output is made again, what others are at
# work on stays, and so does what only looks similar.
dead=$(sh -c 'echo $$')
for name in old.wav.corvin-$dead-0 old.wav.corvin-$$-0 new.wav.corvin-$dead-0 old.wav.corvin-x-0; do
  echo part >.$name.part
done
echo part >.old.wav.corvin-$dead-7.part
exec 9<.old.wav.corvin-$dead-7.part && flock 9
try quietly corvin convert in.dsf -o old.wav -y
list | sed -n "s/corvin-$dead-/corvin-DEAD-/; s/corvin-$$-/corvin-ALIVE-/; /part/p" | sort
rm .*.part

make_dsd dsf long.dsf 0.1
patch long.dsf 64 "0000000002000000"
truncate -s 3G long.dsf
name=$(printf 'ä%.0s' {1..127})
corvin convert long.dsf -o $name -f wav 2>/dev/null &
for _ in $(seq 600); do
  find . -name '.ä*.corvin-*' -size +64k | grep -q . && break
  sleep 0.05
done
kill -KILL $!
wait $! 2>/dev/null
list | grep -c part
quietly corvin convert in.dsf -o $name -f wav
echo "exit $?"
list | grep -c part || true

# No input of several is an output, through whatever link; the others are converted.
mkdir album
make_dsd dsf album/1.dsf 0.01
make_dsd dsf album/2.dsf 0.01
ln album/2.dsf album/1.flac
try quietly corvin convert album/1.dsf album/2.dsf -O album -y
cmp album/2.dsf album/1.flac
list album

# The time of the input, or of now.
touch -d "2001-02-03 04:05:06.789" in.dsf
for option in --preserve-time --overwrite; do
  quietly corvin convert in.dsf -o timed.wav -y $option
  [ timed.wav -nt in.dsf ] && echo newer
  [ timed.wav -ot in.dsf ] && echo older
done
chmod 444 timed.wav
try corvin convert in.dsf -o timed.wav -y
try quietly corvin convert in.dsf -o timed.wav -y --force
