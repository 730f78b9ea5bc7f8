// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/said.h"

#include <cstdio>
#include <utility>

#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

thread_local WordsHeld* holder = nullptr;

}  // namespace

void say(std::string_view line) { say_lines(printable(line) + "\n"); }

void say_lines(std::string_view lines) {
  if (holder)
    holder->lines_ += lines;
  else
    std::fwrite(lines.data(), 1, lines.size(), stderr);  // under the stream's lock, so in one piece
}

WordsHeld::WordsHeld() : outer_(std::exchange(holder, this)) {}

WordsHeld::~WordsHeld() {
  holder = outer_;
  say_lines(lines_);
}

std::string WordsHeld::take() { return std::exchange(lines_, {}); }

}  // namespace corvin::cli
