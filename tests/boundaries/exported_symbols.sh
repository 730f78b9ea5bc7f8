#!/bin/bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# exported_symbols.sh LIBRARY: compares what the library exports with exported_symbols.txt, and looks
# for the names that hosts are linked against, exported_symbols.named. With
# CORVIN_UPDATE_EXPECTED=1 it rewrites the former instead; read the diff before you commit it. The
# latter loses a name only when hosts may lose it.
set -euo pipefail
export LC_ALL=C

lists=$(dirname "$0")/exported_symbols
exported=$(mktemp)
trap 'rm -f "$exported"' EXIT

# Without addresses and kinds; constructors appear once, whatever variants the compiler makes.
nm -DC --defined-only "$1" | sed -E 's/^[0-9a-f]* +[A-Za-z] //' | sort -u >"$exported"

if [ "${CORVIN_UPDATE_EXPECTED:-0}" = 1 ]; then
  cp "$exported" "$lists.txt"
  exit
fi
failed=0
diff -u --label "expected symbols" --label "exported symbols" "$lists.txt" "$exported" || failed=1
missing=$(comm -23 <(sort "$lists.named") <(sed 's/(.*//' "$exported" | sort -u))
if [ -n "$missing" ]; then
  printf 'hosts miss:\n%s\n' "$missing"
  failed=1
fi
# Of the studio engine nothing but its C functions, of other libraries nothing at all.
if grep -E '(corvin|std|__gnu_cxx)::' "$exported"; then failed=1; fi
exit $failed
