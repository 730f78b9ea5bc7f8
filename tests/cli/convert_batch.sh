# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

for artist in 1 2; do
  mkdir -p "m/A$artist/disc 1"
  make_dsd dsf "m/A$artist/disc 1/a.dsf" 0.02
  make_dsd dsf "m/A$artist/disc 1/b.dsf" 0.0$artist
  printf picture >"m/A$artist/disc 1/Cover.JPG"
  echo text >"m/A$artist/disc 1/notes.txt"
  printf 'REM FILE "a.dsf"\r\nFILE "a.dsf" WAVE\r\n  TRACK 01 AUDIO\r\nfile "c.dsf" WAVE' >"m/A$artist/disc 1/x.cue"
done
find m -name '*.dsf' | sort >list
tree() { (cd "$1" && find . -type f | sort); }

# Lists, and where what is in them comes.
(cat list && printf '\n./m/A1/../A1/disc 1/a.dsf\r\n') >long
try corvin convert --files-from long -O shown --dry-run
list shown
find m -name '*.dsf' -print0 | sort -z >zeros
try corvin convert --files-from zeros -O out
try corvin convert -q -0 --files-from - -O out --sidecars <zeros
tree out
cat "out/m/A1/disc 1/x.cue"
touch empty
for way in "--files-from empty" "--files-from missing" "-0 in.dsf" "--resume in.dsf" ""; do
  try corvin convert $way -O none
done

# Names by tags; what the tags lack, and what no name can have.
cp "m/A1/disc 1/a.dsf" named.dsf
corvin tags set -t TITLE="AC/DC: ..." -t ARTIST=Me -t TRACKNUMBER=3 named.dsf
for name in "{albumartist}/{album}/{track:02} {title}" "{track}" "x/{title}" "{artist" "/{title}" "a" "{x}"; do
  try corvin convert named.dsf -O named --name "$name" --dry-run
done
try corvin convert -R m -O named --name "{title}" -f dsf -q
tree named

# What is there need not be made again, nor copied; what others have put there is in the way.
try corvin convert --files-from list -O out --skip-existing --sidecars
echo mine >"out/m/A1/disc 1/Cover.JPG"
try corvin convert --files-from list -O out --skip-existing --sidecars
try corvin convert --files-from list -O out --dry-run

# Parts: each input in one of them, those of one gain together, about equally large.
for i in 1 2 3; do corvin convert -q -R m -O parts --shard $i/3 --dry-run | wc -l; done
for i in 1 2; do corvin convert -R m -O parts --shard $i/2 --dry-run --gain auto --group dir; done
for i in 1 2; do corvin convert -R m -O parts --shard $i/2 --dry-run --gapless; done
for i in 1 2; do corvin convert -q -R m -O parts --shard $i/2 -j 1; done
diff <(cd parts && find . -type f -exec cksum {} + | sort) <(cd out/m && find . -name '*.flac' -exec cksum {} + | sort)
seq 2 | parallel --will-cite -j 2 corvin convert -q -R m -O parallel --shard {}/2 --manifest {}.jsonl
diff <(cd parts && find . -type f -exec cksum {} + | sort) <(cd parallel && find . -type f -exec cksum {} + | sort)
task() { env SLURM_ARRAY_TASK_ID=$1 SLURM_ARRAY_TASK_MIN=3 SLURM_ARRAY_TASK_COUNT=2 SLURM_ARRAY_TASK_STEP=2 "${@:2}"; }
for id in 3 5; do task $id corvin convert -R m -O slurm --shard auto --dry-run; done
try task 4 corvin convert -R m --shard auto
for shard in 0/2 3/2 1/ /2 a/b 1/2x 1/1000001; do try corvin convert -R m --shard $shard; done
