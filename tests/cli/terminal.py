# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# What the tool shows on a terminal and hands to a pipe of hostile names and tags.

import json
import os
import pty
import re
import shutil
import subprocess
import unicodedata

HARMLESS = "ä 音 🎵 é"
HOSTILE = "a\x1b[2Jb\x1b]0;t\x07c\nd\re\u202ef\u2066g\u200bh\u009b31mi\ufeffj\U000e0041k\x7fl"
NAME = HOSTILE.replace("/", "") + HARMLESS + ".dsf"


def on_terminal(*command):
    pid, terminal = pty.fork()
    if pid == 0:
        os.execvp(command[0], command)
    shown = b""
    while True:
        try:
            block = os.read(terminal, 65536)
        except OSError:
            break
        if not block:
            break
        shown += block
    os.close(terminal)
    return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), shown.decode()


def refused(text):
    """What must not reach a terminal but for the ends of lines."""
    text = re.sub("\\r|\\n|\x1b\\[(K|1A)", "", text)
    return sorted({unicodedata.category(c) for c in text} & {"Cc", "Cf", "Zl", "Zp"})


def in_pipe(*command):
    done = subprocess.run(command, capture_output=True, check=False)
    return done.returncode, done.stdout, done.stderr


shutil.copy("plain.dsf", NAME)
subprocess.run(["corvin", "tags", "set", "-t", "TITLE=" + HOSTILE + HARMLESS, NAME], check=True)
for command in (
    ["info", NAME],
    ["tags", NAME],
    ["tags", "--json", NAME],
    ["tags", "export", NAME],
    ["info", NAME + "missing"],
    ["convert", NAME, "-o", NAME + ".wav"],
    ["convert", NAME, "-o", NAME + ".wav"],
    ["info", "--" + NAME],
):
    code, shown = on_terminal("corvin", *command)
    print(*command[:1], code, refused(shown), HARMLESS in shown)
    for stream in in_pipe("corvin", *command)[1:]:
        if any(c < 32 and c != 10 for c in stream):
            print("control characters in a pipe", stream)

# Programs read the name's bytes, a line each, and the content of JSON whole.
name = in_pipe("corvin", "info", NAME)[1].split(b"\n")[0].decode()
print([c for c in name if refused(c)] == [c for c in NAME if refused(c) and ord(c) > 127], len(name) == len(NAME))
entry = json.loads(in_pipe("corvin", "tags", "--json", NAME)[1])[0]
print(entry["file"] == NAME, entry["fields"]["TITLE"] == [HOSTILE + HARMLESS])
