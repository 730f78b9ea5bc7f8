// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The two directions of corvin convert, and what they are asked for.

#ifndef CORVIN_CLI_CONVERT_H_
#define CORVIN_CLI_CONVERT_H_

#include <string>

#include "cli/dsd_source.h"
#include "cli/exit_code.h"

namespace corvin::cli {

struct ConvertOptions {
  std::string input;
  std::string output;
  std::string rate;  // as given; what it may be depends on the direction. Empty: chosen by the source's
  int bits = 0;      // 0: not given
  bool overwrite = false;
};

/** Converts a DSD file to WAV. */
ExitCode convert_to_wav(const ConvertOptions& options, const DsdSource& source);

/** Converts a file that libsndfile reads to the DSD container that the output's name tells. */
ExitCode convert_to_dsd(const ConvertOptions& options);

/** The container kind 1..3 that the ending of a file name stands for; 0 for any other. */
int container_of(const std::string& path);

/** Reads a whole number of Hz from 1 to `max_hz`; 0 when `text` is anything else. */
int parse_rate_hz(const std::string& text, int max_hz);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_H_
