// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/failure.h"

#include "cli/words/said.h"

namespace corvin::cli {

ExitCode report(const Failure& failure) {
  note(failure.subject(), failure.what());
  return failure.code();
}

void note(const std::string& subject, const std::string& message) {
  say("corvin: " + (subject.empty() ? "''" : subject) + ": " + message + "\n");
}

}  // namespace corvin::cli
