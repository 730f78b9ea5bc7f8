# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# Each command has a manual page, and each page has the options that --help has.

cat >compare.py <<'P'
import pathlib, re, subprocess, sys

pages = pathlib.Path(sys.argv[1])

def run(*words):
    return subprocess.run(["corvin", *words, "--help"], stdout=subprocess.PIPE, text=True, check=True).stdout

def below(text):
    part = re.search(r"\nSubcommands:\n(.*?)\n\n", text, re.S)
    return re.findall(r"^  (\w+)", part[1], re.M) if part else []

def options(*words):
    text = run(*words)
    names = set(re.findall(r"^  (-[-\w,]+)", text, re.M))
    return names.union(*(options(*words, command) for command in below(text)))

commands = below(run())
for command in commands:
    page = pages / f"corvin-{command}.1.scd"
    if not page.exists():
        print(command, "has no page")
        continue
    written = {name.replace(" ", "") for name in re.findall(r"^\*(-[-\w, ]+)\*", page.read_text(), re.M)}
    for name in sorted(options(command) ^ written):
        print(command, "has" if name in written else "lacks", name)
listed = set(re.findall(r"\*corvin-(\w+)\*", (pages / "corvin.1.scd").read_text()))
print("corvin(1) lists other commands than there are" if listed != set(commands) else "all listed")
P
pages=$(dirname "$CASES")/../docs/man
python3 compare.py "$pages"
for page in "$pages"/*.scd; do
  scdoc <"$page" >page.1 || echo "$page"
  [ "$(wc -l <page.1)" -gt 20 ] || echo "$page is short"
done
