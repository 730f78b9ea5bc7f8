# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

make_wav sound.wav 1 8000 1
mkdir out

# sheet LINE...: splits the sound by a sheet of these lines, each with an end of its own in $end, and
# tells what came of it.
end='\n'
sheet() {
  printf "%b$end" "$@" >sheet.cue
  echo "--- ${*: -1}" >&2
  corvin split sound.wav --cue sheet.cue -O out
  echo "exit $?: $(ls out | tr '\n' '|')"
  for file in out/*; do [ -e "$file" ] && corvin tags "$file" | grep -v "TRACK\|^out"; done
  rm -f out/*
}
start='FILE "sound.wav" WAVE\n TRACK 01 AUDIO'

# Odd ones that are understood.
sheet "$start" '  INDEX 01 00:00:00'
end='\r\n' sheet '\xef\xbb\xbfTITLE "Märchen"' 'file sound.wav wave' 'track 1' '\tTITLE Ohne Zeichen' 'INDEX 1 0:0:0'
end='\r' sheet 'PERFORMER "Fr\xe9d\xe9ric \x96 \x80"' "$start" 'INDEX 01 00:00:00'
sheet 'REM GENRE Jazz' 'REM DATE 1999' 'REM REPLAYGAIN_ALBUM_GAIN -3.00 dB' 'REM DISCID 0A' \
  'REM DISCNUMBER 2' 'REM TOTALDISCS 3' 'REM COMMENT "so" so' 'CATALOG 0123456789012' \
  'SONGWRITER "All"' "$start" 'TITLE "Say "this" now"' 'SONGWRITER "One"' 'ISRC ABCDE1234567' \
  'FLAGS DCP PRE' 'REM REPLAYGAIN_TRACK_GAIN -1.00 dB' 'PREGAP 00:02:00' 'INDEX 01 00:00:00' \
  'INDEX 02 00:00:10' 'POSTGAP 00:00:05' 'NEWWORD x'
sheet 'FILE "C:\\\\rip\\\\Sound.flac" WAVE' 'TRACK 01 AUDIO' 'INDEX 01 00:00:00' \
  'TRACK 02 AUDIO' 'INDEX 00 00:00:30' 'INDEX 01 00:00:40' 'FILE "other.wav" WAVE' \
  'TRACK 03 AUDIO' 'INDEX 01 00:00:00'
sheet 'FILE "sound.wav" BINARY' 'TRACK 01 MODE1/2352' 'INDEX 01 00:00:00' 'TRACK 02 AUDIO' \
  'INDEX 01 00:00:30'

# Names that directories do not take, and equal ones.
sheet "$start" 'TITLE "../../etc/x\\ty"' 'INDEX 01 00:00:00'
long=$(printf '%300s' | sed 's/ /ä/g')
sheet "$start" "TITLE \"$long\"" 'INDEX 01 00:00:00' | tr -d ä
name() { corvin split sound.wav --at 2000,4000 -O out --name "$1" && ls out; rm -f out/*; }
for pattern in 'Same {title}' '.{track}' '{track:03} of {total}, {artist}' '{nothing}' '{track:12}' '{track' \
  same 'a/{track}'; do
  name "$pattern"
done

# What makes no sense, with the number of the line.
sheet ''
sheet 'TITLE "x"'
sheet 'TRACK 01 AUDIO' 'INDEX 01 00:00:00'
sheet 'FILE "sound.wav" WAVE' 'INDEX 01 00:00:00'
sheet 'FILE "" WAVE'
sheet 'FILE "sound.wav WAVE'
sheet "$start"
sheet "$start" 'INDEX 00 00:00:00'
for time in 00:00:75 00:60:00 00:00 -1:00:00 99999999999:00:00 0x:00:00 '' 1:2:3:4; do sheet "$start" "INDEX 01 $time"; done
sheet "$start" 'INDEX 01 00:00:00' 'INDEX 01 00:00:10'
sheet "$start" 'INDEX 01 00:00:40' 'TRACK 02 AUDIO' 'INDEX 01 00:00:30'
sheet "$start" 'INDEX 01 00:00:00' 'TRACK 01 AUDIO' 'INDEX 01 00:00:30'
sheet "$start" 'INDEX 01 00:00:30' 'TRACK 02 AUDIO' 'INDEX 01 00:00:30'
sheet "$start" 'INDEX 01 00:00:00' 'TRACK 02 AUDIO' 'INDEX 01 99999:00:00'
for number in 0 1000 x 4294967297; do sheet 'FILE "sound.wav" WAVE' "TRACK $number AUDIO"; done
sheet 'FILE "a.wav" WAVE' 'FILE "b.wav" WAVE' 'TRACK 01 AUDIO' 'INDEX 01 00:00:00'
sheet "$start" 'T\x00ITLE'
sheet '\xff\xfeT'
head -c 3000000 /dev/zero >huge.cue
for cue in huge.cue missing.cue out sound.wav; do try corvin split sound.wav --cue $cue -O out; done
try corvin split sound.wav -O out
cp sound.wav text.wav && corvin tags set -t "CUESHEET=$(printf 'TRACK 01\nINDEX 01')" text.wav
try corvin split text.wav -O out
printf 'FILE "gone.wav" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n' >gone.cue
try corvin split gone.cue -O out
list out

# Anything at all: an end by itself, with a message, and never a signal.
python3 - <<'EOF'
import random, subprocess
random.seed(7)
words = [b"FILE", b"TRACK", b"INDEX", b"01", b"02", b"AUDIO", b"WAVE", b'"', b"sound.wav", b"00:00:01",
         b"\n", b"\r", b" ", b"\0", b"\xff", b"99:59:74", b"TITLE", b"REM", b"-1", b"\xef\xbb\xbf"]
codes = set()
for _ in range(40):
    with open("any.cue", "wb") as file:
        file.write(b'FILE "sound.wav" WAVE\nTRACK 01 AUDIO\n' if random.random() < 0.5 else b"")
        for _ in range(random.randrange(60)):
            file.write(random.choice(words) + random.choice([b" ", b"", b"\n"]))
    done = subprocess.run(["corvin", "split", "sound.wav", "--cue", "any.cue", "-O", "any", "-y"],
                          capture_output=True)
    if done.returncode not in (0, 3) or not done.stderr:
        print(done)
EOF
