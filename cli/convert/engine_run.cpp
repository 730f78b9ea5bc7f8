// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/engine_run.h"

#include <algorithm>
#include <thread>

#include "cli/words/progress_line.h"

namespace corvin::cli {
namespace {

// More do not pay: reading and writing are the limit by then.
constexpr unsigned kMostThreads = 8;

uint32_t threads_of_this_machine() {
  const unsigned processors = std::thread::hardware_concurrency();
  return processors < 2 ? 0 : std::min(processors, kMostThreads);
}

Failure failure_of(const Error& error, const EngineRun& run) {
  if (error.status() == CORVIN_E_WRITE) return run.why_writing();
  if (error.status() != CORVIN_E_UNSUPPORTED) return {kBadInput, run.input_path, error.what()};
  return {kBadInput, run.input_path,
          "has a rate of " + std::to_string(run.input_rate_hz) +
              " Hz, which the studio engine does not convert" + run.advice};
}

}  // namespace

corvin_convert_report run_engine(const ConvertSettings& settings, const EngineCall& convert,
                                 const EngineRun& run) {
  ConvertSettings all = settings;
  all.threads = threads_of_this_machine();
  try {
    ProgressLine line;
    if (run.begins_at_zero) line.show(0);
    return convert(all, [&](uint64_t done, uint64_t total) {
      if (total == 0) return true;
      const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
      line.show(static_cast<int>(100 * part));
      return true;
    });
  } catch (const Error& error) {
    throw failure_of(error, run);
  }
}

}  // namespace corvin::cli
