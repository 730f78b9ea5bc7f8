# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# What bash offers for the last word.
. <(corvin completion bash)
offered() {
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
  _corvin
  echo "$*: ${COMPREPLY[*]}"
}
offered corvin con
offered corvin tags s
offered corvin tags set --
offered corvin convert --dry
offered corvin convert --dither ""
offered corvin convert in.dsf --phase m
offered corvin convert -o ""
offered corvin completion ""
complete -p corvin
# No text of the program ends a word of the script before its time.
for shell in zsh fish; do
  corvin completion $shell >script
  [ $(($(tr -cd "'" <script | wc -c) % 2)) = 0 ] || echo "odd quotes"
  grep -c -- --dither script
done
try corvin completion csh
