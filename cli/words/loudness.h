// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How much the tool says on standard error: --quiet, --verbose, --progress. Set once, before any work
// begins.

#ifndef CORVIN_CLI_WORDS_LOUDNESS_H_
#define CORVIN_CLI_WORDS_LOUDNESS_H_

#include <string>

namespace corvin::cli {

enum class ProgressStyle {
  kLines,  // a line for each job at work, on a terminal only
  kJson,   // an object for each job and second
  kNone,
};

struct Loudness {
  bool is_quiet = false;    // nothing but what went wrong
  bool is_verbose = false;  // also how things are done
  ProgressStyle progress = ProgressStyle::kLines;
};

Loudness& loudness();

/** Says how something is done with `subject`, when --verbose asks for it. */
void note_detail(const std::string& subject, const std::string& message);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_LOUDNESS_H_
