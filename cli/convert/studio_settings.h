// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the studio engine's conversions have in common for the tool.

#ifndef CORVIN_CLI_CONVERT_STUDIO_SETTINGS_H_
#define CORVIN_CLI_CONVERT_STUDIO_SETTINGS_H_

#include <string>

#include "cli/convert/convert.h"
#include "cli/words/progress_line.h"
#include "corvin.h"

namespace corvin::cli {

/** Gain, modulator, threads for this machine, and progress on `line`, which outlives them. */
corvin_convert_settings studio_settings(const ConvertOptions& options, ProgressLine& line);

/** "peak -6.02 dBFS" for 0.5, "silent" for 0. */
std::string level_text(double peak);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_STUDIO_SETTINGS_H_
