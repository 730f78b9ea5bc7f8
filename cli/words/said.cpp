// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/said.h"

#include <utility>

#include "cli/words/screen.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

thread_local WordsHeld* holder = nullptr;

}  // namespace

void say(std::string_view lines) {
  if (holder)
    holder->lines_ += lines;
  else
    print_words(lines);
}

void say_line(std::string_view line) { say(printable(line) + "\n"); }

void hold_damage() {
  if (holder) holder->is_damage_noted_ = true;
}

WordsHeld::WordsHeld() : outer_(std::exchange(holder, this)) {}

WordsHeld::~WordsHeld() {
  holder = outer_;
  if (is_damage_noted_) hold_damage();
  say(lines_);
}

std::string WordsHeld::take() { return std::exchange(lines_, {}); }

}  // namespace corvin::cli
