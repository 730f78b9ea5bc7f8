# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# The records of a manifest, without what differs from run to run.
records() {
  python3 -c '
import json, sys
for line in open(sys.argv[1]):
    record = json.loads(line)
    for key in "input_changed_ns", "work_seconds":
        if key in record: record[key] = type(record[key]).__name__
    print(json.dumps(record))' "$1"
}
hashes() { (cd "$1" && find . -type f -exec cksum {} + | sort); }

mkdir m
make_dsd dsf m/a.dsf 0.02
make_dsd dsf m/b.dsf 0.01
echo broken >m/c.dsf
make_dsd dsf m/d.dsf 0.1
truncate -s 50000 m/d.dsf
run() { corvin convert -R m -O out --manifest done.jsonl -b 16 --gain 1 -j 1 "$@"; }
try run
records done.jsonl
corvin hash out/a.flac | cut -c1-40

# What a manifest lists is checked by size and by sum.
try corvin check --manifest done.jsonl
cp -r out altered
cp out/a.flac out/b.flac
rm out/d.flac
try corvin check --manifest done.jsonl
try corvin check --manifest missing.jsonl
try corvin check --manifest m/c.dsf
try corvin check
rm -r out && mv altered out

# What failed, what has been altered, and what is gone is made again; the rest is not.
make_dsd dsf m/c.dsf 0.01
rm out/a.flac
printf x >>out/b.flac
try run --resume
touch m/a.dsf
try run --resume
try run --resume -y
try run --resume --dry-run
try corvin convert -R m -O out --manifest done.jsonl --resume

# A run that was killed leaves the beginning of a line; what it was at is taken for half done.
grep -v '"end".*a.flac' done.jsonl >torn.jsonl
printf '{"event":"begin","output":"out/b' >>torn.jsonl
echo half >out/a.flac
try corvin convert -R m -O out --manifest torn.jsonl -b 16 --gain 1 --resume
tail -n 2 torn.jsonl | records /dev/stdin
try corvin convert -R m -O out --manifest torn.jsonl -b 16 --gain 1 --resume
try corvin convert -R m -O out --manifest /dev/full -y -q
head -c 2000000 /dev/zero | tr '\0' x >long.jsonl
try corvin convert -R m -O out --manifest long.jsonl -y
try corvin convert -R m -O out --manifest m -y

# Two hundred files, killed twice on the way, are in the end what one run makes of them.
mkdir many
make_dsd dsf many/001.dsf 0.01
for i in {002..200}; do cp many/001.dsf many/$i.dsf; done
batch() { exec corvin convert -q -R many -O "$1" --manifest "$1.jsonl" --resume --gain -3; }
(batch whole)
for at in 40 120; do
  batch parts &
  until [ "$(ls parts 2>/dev/null | wc -l)" -gt $at ] || ! kill -0 $! 2>/dev/null; do sleep 0.01; done
  kill -KILL $!
  wait $! 2>/dev/null
done
(batch parts)
diff <(hashes whole) <(hashes parts)
list parts | wc -l
grep -c '"exit":0' whole.jsonl
