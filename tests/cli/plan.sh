# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# What is measured, against what the engine promises; figures of this machine's speed are left out.
cat >judge.py <<'P'
import json, sys

for step in json.load(sys.stdin):
    points = {point["hz"]: point["db"] for point in step["response"]} if "response" in step else {}
    passed = [db for hz, db in points.items() if hz <= step["pass_hz"]]
    beyond = [db for hz, db in points.items() if hz > step["pass_hz"]]
    to_dsd = "DSD" in step["step"].split(" to ")[1]
    # A tone in bits stands on the noise beside it, at 45 kHz of DSD64 some 60 dB below.
    limit = 0.1 if to_dsd else 1e-5
    print(step["step"], step.get("pass_hz"), step.get("stop_hz"), len(step["stages"]),
          "flat" if max(map(abs, [*passed, step.get("ripple_db", 0)])) <= limit else "not flat",
          "" if to_dsd or not points else "closed" if step["stop_db"] <= -150 else "open",
          "falling" if beyond == sorted(beyond, reverse=True) else "rising",
          f"{1000 * step.get('delay_s', 0) + 0.0:.2f} ms",
          step.get("times_real_time", 1) > 0 and step.get("latency_s", 1) > 0)
P
judge() { echo "$ $*"; "$@" --json | python3 judge.py; }
judge corvin plan dsd64 88.2k
judge corvin plan dsd128 48k --phase minimum --lowpass 20k:22k
judge corvin plan 12288000 37800 --lowpass off
judge corvin plan 96k dsd64 --modulator standard
judge corvin plan dsd64 dsd128 --modulator standard
corvin plan dsd128 6144000 && corvin plan dsd64 dsd64
corvin plan dsd64 44.1k | sed '/speed here/d'
for rates in "44.1k 48k" "dsd64 1000" "dsd64" "x 44.1k" "1M 44.1k"; do try corvin plan $rates; done
