// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One conversion by the studio engine, whichever way: with the threads that fit this machine, a
// line of progress, and its failures in the tool's words.

#ifndef CORVIN_CLI_CONVERT_ENGINE_RUN_H_
#define CORVIN_CLI_CONVERT_ENGINE_RUN_H_

#include <cstdint>
#include <functional>
#include <string>

#include "cli/words/failure.h"
#include "corvin.hpp"

namespace corvin::cli {

/** One of corvin.hpp's conversions. */
using EngineCall = std::function<corvin_convert_report(const ConvertSettings&, const Progress&)>;

struct EngineRun {
  std::string input_path;
  uint32_t input_rate_hz = 0;
  std::function<Failure()> why_writing;  // failed; called when it has
};

/** Runs `convert` with `settings`. An input that cannot be read on is noted as damaged when they keep
 *  what came before. Throws Failure. */
corvin_convert_report run_engine(const ConvertSettings& settings, const EngineCall& convert,
                                 const EngineRun& run);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_ENGINE_RUN_H_
