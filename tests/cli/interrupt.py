# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# Ends conversions of long.dsf by signals, at several moments, and tells of what they died.

import glob
import os
import signal
import subprocess
import time

SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)


def run(command, ignored=()):
    """In a session of its own, so that a signal can go to all that it starts."""

    def prepare():
        for number in SIGNALS:
            signal.signal(number, signal.SIG_IGN if number in ignored else signal.SIG_DFL)

    return subprocess.Popen(command, preexec_fn=prepare, stderr=subprocess.PIPE, start_new_session=True)


def start(name, ignored=()):
    return run(["corvin", "convert", "long.dsf", "-o", "out/" + name, "-y"], ignored)


def wait_until_begun(count=1):
    """Until the outputs have grown beyond their headers: the conversions run."""
    deadline = time.monotonic() + 60
    while time.monotonic() < deadline:
        if sum(os.path.getsize(path) > 65536 for path in glob.glob("out/.*corvin-*")) >= count:
            return
        time.sleep(0.01)


def end(tool, number):
    os.killpg(tool.pid, number)
    try:
        said = tool.communicate(timeout=60)[1].decode()
    except subprocess.TimeoutExpired:
        os.killpg(tool.pid, signal.SIGKILL)
        return "hung"
    code = tool.returncode
    return f"{signal.Signals(-code).name if code < 0 else code}, {said.strip()!r}, {os.listdir('out')}"


for name in "new.wav", "old.wav":
    for number in SIGNALS:
        tool = start(name)
        wait_until_begun()
        print(name, end(tool, number))

# Several at once.
os.link("long.dsf", "other.dsf")
tool = run(["corvin", "convert", "long.dsf", "other.dsf", "-O", "out", "-f", "wav", "-j", "2"])
wait_until_begun(2)
print("two", end(tool, signal.SIGINT))

# From before main() on: whenever it comes, it kills and nothing is left.
ends = set()
for delay in range(0, 60, 2):
    tool = start("new.wav")
    time.sleep(delay / 1000)
    ends.add(end(tool, signal.SIGTERM).replace("corvin: interrupted", ""))
print("at any time", ends)

# nohup is heeded: the signal passes, the conversion goes on until it is told otherwise.
tool = start("new.wav", [signal.SIGHUP])
wait_until_begun()
tool.send_signal(signal.SIGHUP)
time.sleep(0.2)
print("ignored", end(tool, signal.SIGTERM))

# The shell learns of the signal, so a loop around the tool ends as well.
loop = run(["bash", "-c", "for n in one two; do corvin convert long.dsf -o out/$n.wav; echo more >&2; done"])
wait_until_begun()
print("loop", end(loop, signal.SIGINT))
