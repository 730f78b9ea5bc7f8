// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/engine_run.h"

#include <cstdio>
#include <cstring>

#include "cli/words/job_progress.h"
#include "cli/words/loudness.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

Failure failure_of(const Error& error, const EngineRun& run) {
  if (error.status() == CORVIN_E_WRITE) return run.why_writing();
  if (error.status() != CORVIN_E_UNSUPPORTED) return {kBadInput, run.input_path, error.what()};
  return {kBadInput, run.input_path,
          "has a rate of " + std::to_string(run.input_rate_hz) +
              " Hz, which the engine does not convert"};
}

std::string manner_of(const ConvertSettings& settings) {
  char gain[40];
  std::snprintf(gain, sizeof gain, "%.2f dB", settings.gain_db);
  return std::string("goes through filters of ") +
         (settings.phase == CORVIN_MINIMUM_PHASE ? "minimum" : "linear") +
         " phase, with a gain of " + gain + " and " + counted(settings.threads, "worker thread");
}

}  // namespace

corvin_convert_report run_engine(const ConvertSettings& settings, const EngineCall& convert,
                                 const EngineRun& run) {
  try {
    JobProgress progress(run.input_path, run.input_rate_hz);
    note_detail(run.input_path, manner_of(settings));
    const corvin_convert_report report = convert(settings, [&](uint64_t done, uint64_t total) {
      progress.show(done, total);
      return true;
    });
    note_detail(run.input_path, progress.result());
    return report;
  } catch (const Error& error) {
    if (error.status() != CORVIN_E_READ || !settings.keep_damaged) throw failure_of(error, run);
    const int why = error.system_error();
    note_damage(run.input_path, std::string("cannot be read to its end") +
                                    (why ? std::string(": ") + std::strerror(why) : "") +
                                    "; what comes before is converted");
    const auto* converted = dynamic_cast<const ConvertError*>(&error);
    return converted ? converted->report() : corvin_convert_report{};
  }
}

}  // namespace corvin::cli
