// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What --gain auto comes to: the peaks are measured before the first conversion begins.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_GAIN_H_
#define CORVIN_CLI_COMMANDS_CONVERT_GAIN_H_

#include <vector>

#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"

namespace corvin::cli {

/** How many conversions run at once and how many threads each has. */
struct Split {
  unsigned jobs;
  uint32_t threads;
};

/** The gain of each conversion, in dB. An input whose peak cannot be found fails in `plan`. */
std::vector<double> gains_of(const ConvertOptions& options, std::vector<PlannedConversion>& plan,
                             const Split& split);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_GAIN_H_
