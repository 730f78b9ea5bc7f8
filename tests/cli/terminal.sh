# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# Names and texts that would steer a terminal, turn what it shows round, or show nothing of
# themselves; what is harmless stays. The escape sequences would clear the screen and set the title.
make_dsd dsf plain.dsf 0.01
python3 "$CASES/terminal.py"
