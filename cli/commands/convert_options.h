// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The options of corvin convert, as values: no text of an option is looked at anywhere else. What
// is to be had depends on the way that the conversion goes, so those not given have no value.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_OPTIONS_H_
#define CORVIN_CLI_COMMANDS_CONVERT_OPTIONS_H_

#include <cstdint>
#include <optional>
#include <string>

#include "cli/commands/commands.h"
#include "corvin.h"

namespace corvin::cli {

/** A rate that was asked for: in Hz, as a multiple, or as neither, which no way accepts. */
struct AskedRate {
  std::string text;  // as given, for messages
  std::optional<uint32_t> hz;
  std::optional<uint32_t> dsd_multiple;  // 64, 128, 256 or 512
};

struct ConvertOptions {
  std::string input;
  std::string output;
  Engine engine = Engine::kStudio;
  std::optional<AskedRate> rate;
  std::optional<corvin_sample_format> format;
  std::optional<corvin_dither> dither;
  std::optional<corvin_phase> phase;
  std::optional<double> gain_db;
  std::optional<corvin_modulator> modulator;
  bool overwrite = false;
};

/** Adds the options to `command`. Parsing fills `options`, which must outlive it. */
void add_convert_options(CLI::App& command, ConvertOptions& options);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_OPTIONS_H_
