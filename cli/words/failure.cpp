// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/failure.h"

#include <atomic>
#include <map>
#include <string>

#include "cli/words/loudness.h"
#include "cli/words/said.h"

namespace corvin::cli {
namespace {

std::atomic<bool> is_damage_noted = false;

std::map<std::string, std::string>& other_names() {
  static std::map<std::string, std::string> names;
  return names;
}

void say_of(const std::string& subject, const std::string& message) {
  const auto other = other_names().find(subject);
  const std::string& name = other == other_names().end() ? subject : other->second;
  say_line("corvin: " + (name.empty() ? "''" : name) + ": " + message);
}

}  // namespace

void call_in_messages(const std::string& path, const std::string& name) {
  other_names()[path] = name;
}

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
