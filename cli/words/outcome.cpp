// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/outcome.h"

#include "cli/words/loudness.h"
#include "cli/words/measures.h"
#include "cli/words/said.h"

namespace corvin::cli {

void print_summary(const std::string& path, std::initializer_list<std::string> parts) {
  if (loudness().is_quiet) return;
  std::string line;
  for (const std::string& part : parts)
    if (!part.empty()) line += (line.empty() ? "" : ", ") + part;
  say_line((path == "-" ? "standard output" : path) + ": " + line);
}

Failure no_convertible_sound(const std::string& path) {
  return {kBadInput, path, "holds no sound that can be converted"};
}

void note_no_sound(const std::string& path) { note(path, "holds no sound"); }

void note_limited(const std::string& path, uint64_t samples) {
  if (samples == 0) return;
  note(path, "is louder in places than DSD can follow and was limited; a lower --gain avoids that");
}

void note_cut_short(const std::string& path) {
  note_damage(path, "is cut short: it declares more sound than it holds");
}

void note_clips(const std::string& path, uint64_t samples, const std::string& advice) {
  if (samples == 0) return;
  note(path, counted(samples, "sample") + " beyond full scale clipped" + advice);
}

}  // namespace corvin::cli
