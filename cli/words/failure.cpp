// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/failure.h"

#include <cstdio>

namespace corvin::cli {

ExitCode report(const Failure& failure) {
  note(failure.subject(), failure.what());
  return failure.code();
}

void note(const std::string& subject, const std::string& message) {
  std::fprintf(stderr, "corvin: %s: %s\n", subject.empty() ? "''" : subject.c_str(),
               message.c_str());
}

}  // namespace corvin::cli
