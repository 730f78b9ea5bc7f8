# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Sounds of which every figure can be told beforehand; what is measured is compared in measure.py.
python3 "$CASES/measure.py" make
make_wav plain.wav 0.5
make_dsd dsf tone.dsf 0.5
make_dsd dsf six.dsf 0.1 2822400 6
make_dsd dsf none.dsf 0
make_wav short.wav 0.05
corvin convert twin.wav -o twin.dsf -q --modulator standard
corvin convert noise.wav -o noise.dsf -q --modulator standard
corvin measure --json -j 2 *.wav *.dsf >measured.json
echo "exit $?"
python3 "$CASES/measure.py" compare measured.json

# The same without --json, but for what rounding alone makes.
try corvin measure loud.wav none.dsf | grep -v '20 kHz - 24 kHz'
corvin measure tone.dsf | sed -n 1,5p

# Inputs: directories, pipes, what is no sound, what is cut short.
mkdir music && cp loud.wav music/a.wav && cp tone.dsf music/b.dsf && echo text >music/c.txt
corvin measure -R music | grep -v ' '
corvin measure - <loud.wav | sed -n 1,3p
try corvin measure music/c.txt gone.wav loud.wav --json >out 2>err
grep -c '"file"' out
cat err
head -c 4000 loud.wav >cut.wav
try corvin measure cut.wav >out
tail -1 out
try corvin measure loud.wav --progress json 2>&1 >out | tail -1 | sed 's/,"elapsed.*//'

# Pictures are well-formed, whatever the file's name, and a renderer of its own draws them.
cp plain.wav "$(printf '<&>"]]>\342\200\256\377\033[1m.wav')"
mv tone.dsf tone.bak && mv tone.bak "a name that is much longer than any title line of a picture has room for.dsf"
for file in *plain.wav short.wav six.dsf none.dsf *'[1m.wav' a*.dsf; do
  corvin measure "$file" --svg picture.svg -y -q >out || echo "exit $?"
  rsvg-convert picture.svg -o picture.png
  python3 "$CASES/measure.py" picture picture.svg picture.png
done
try corvin measure plain.wav --svg picture.svg >out
try corvin measure plain.wav --svg plain.wav -y >out
try corvin measure plain.wav short.wav --svg two.svg
try corvin measure plain.wav --json --svg -
corvin measure plain.wav --svg - | head -c 38
