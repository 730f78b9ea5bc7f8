// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/loudness.h"

#include "cli/words/failure.h"

namespace corvin::cli {

Loudness& loudness() {
  static Loudness loudness;
  return loudness;
}

void note_detail(const std::string& subject, const std::string& message) {
  if (loudness().is_verbose) note(subject, message);
}

}  // namespace corvin::cli
