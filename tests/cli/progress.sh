# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# An album's track of a name that is wide and long, and a file of hours, nearly all of it a hole.
make_dsd dsf in.dsf 1
make_dsd dsf long.dsf 0.1
patch long.dsf 64 "0000000002000000"
truncate -s 3G long.dsf
python3 "$CASES/progress.py"
list

# JSON for programs, whatever standard error is.
corvin convert in.dsf -o json.wav --progress json 2>said
python3 -c '
import json
lines = open("said").read().splitlines()
jobs = [json.loads(line) for line in lines if line[:1] == "{"]
print(jobs[-1]["job"], jobs[-1]["percent"], jobs[-1]["seconds"], len(lines) - len(jobs))'

# How much is said.
try corvin convert in.dsf -o quiet.wav -q
try corvin convert in.dsf -o quiet.wav -q
took() { sed -E 's/[0-9.]+ s, [0-9.]+ times/N s, N times/; s/[0-9]+ worker/N worker/; s/threads/thread/'; }
try through took corvin convert in.dsf -o more.wav --verbose
try corvin convert in.dsf -o more.wav -qv
try corvin convert in.dsf -o more.wav --progress some
