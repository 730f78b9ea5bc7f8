# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# Runs conversions on a terminal and looks at its screen: that the lines of progress never wrap, and
# that nothing of them is left.

import fcntl
import os
import pty
import re
import select
import shutil
import signal
import struct
import termios
import time
import unicodedata


class Screen:
    """As much of a terminal as the tool makes use of. Keeps what was on it at any time."""

    def __init__(self):
        self.rows, self.row, self.widest, self.shown = [""], 0, 0, set()

    def feed(self, text):
        for token in re.findall(r"\x1b\[[0-9]*[A-Za-z]|[\r\n]|[^\x1b\r\n]+", text):
            if token == "\r":
                self.column = 0
            elif token == "\n":
                self.row += 1
                if self.row == len(self.rows):
                    self.rows.append("")
            elif token == "\x1b[1A":
                self.row -= 1
            elif token == "\x1b[K":
                self.rows[self.row] = ""
            else:
                self.rows[self.row] += token
                wide = sum(1 + (unicodedata.east_asian_width(c) in "WF") for c in self.rows[self.row])
                self.widest = max(self.widest, wide)
                self.shown.add(re.sub("[0-9]+", "0", token))


def convert(options, columns, interrupt_after=None, into="out.wav"):
    pid, terminal = pty.fork()
    if pid == 0:
        fcntl.ioctl(2, termios.TIOCSWINSZ, struct.pack("HHHH", 10, columns, 0, 0))
        os.environ["TERM"] = "xterm"
        os.execvp("corvin", ["corvin", "convert", *options, "-o", into, "-y"])
    screen, begun, pending = Screen(), time.monotonic(), b""
    while True:
        if interrupt_after and time.monotonic() - begun > interrupt_after:
            os.kill(pid, signal.SIGINT)
            interrupt_after = None
        try:
            if not select.select([terminal], [], [], 0.05)[0]:
                continue
            pending += os.read(terminal, 65536)
        except OSError:
            break
        try:
            screen.feed(pending.decode())
            pending = b""
        except UnicodeDecodeError:
            continue
    code = os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])
    os.close(terminal)
    left = [re.sub("peak.*", "peak", row) for row in screen.rows if row]
    return code, left, screen


WIDE = "音楽" * 20 + " 02.dsf"
shutil.copy("in.dsf", WIDE)
code, left, screen = convert(["in.dsf"], 80)
print(code, left, "in.dsf    0 %" in screen.shown)

for columns in 100, 40, 10, 4:
    code, left, screen = convert([WIDE, "-r", "768000"], columns)
    progress = [line for line in screen.shown if "%" in line]
    print(columns, code, len(left), max(map(len, progress), default=0) > 0,
          all(sum(1 + (unicodedata.east_asian_width(c) in "WF") for c in line) < columns for line in progress))

# A slow one: speed and time left are told, and an interrupt leaves the screen clean.
code, left, screen = convert(["long.dsf"], 80, interrupt_after=2)
print(code, left, any(re.fullmatch(r"long.dsf    0 % +0\.0x  0:0:0 left", line) for line in screen.shown))

for option in "-q", "--progress=none":
    code, left, screen = convert(["in.dsf", option], 80)
    print(option, code, len(screen.shown))
