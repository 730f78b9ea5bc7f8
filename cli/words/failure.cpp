// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/failure.h"

#include <atomic>

#include "cli/words/loudness.h"
#include "cli/words/said.h"

namespace corvin::cli {
namespace {

std::atomic<bool> is_damage_noted = false;

void say_of(const std::string& subject, const std::string& message) {
  say_line("corvin: " + (subject.empty() ? "''" : subject) + ": " + message);
}

}  // namespace

ExitCode report(const Failure& failure) {
  say_of(failure.subject(), failure.what());
  return failure.code();
}

void note(const std::string& subject, const std::string& message) {
  if (!loudness().is_quiet) say_of(subject, message);
}

void note_damage(const std::string& subject, const std::string& message) {
  is_damage_noted = true;
  hold_damage();
  note(subject, message);
}

ExitCode with_damage(ExitCode code) { return code == kDone && is_damage_noted ? kDamage : code; }

}  // namespace corvin::cli
