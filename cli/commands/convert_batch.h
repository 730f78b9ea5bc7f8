// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What makes many runs of corvin convert one batch: what is done already is left out, what is done is
// recorded, and what stands beside the sound comes along.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_BATCH_H_
#define CORVIN_CLI_COMMANDS_CONVERT_BATCH_H_

#include <functional>
#include <span>
#include <vector>

#include "cli/batch/jobs.h"
#include "cli/batch/manifest.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"
#include "cli/convert/ways.h"

namespace corvin::cli {

/** Marks what need not be done in `plan`: by --skip-existing, and by the records of --resume.
 *  @param manifest  may be null */
void skip_what_is_done(const ConvertOptions& options, const Manifest* manifest,
                       std::vector<PlannedConversion>& plan);

/** Some conversions that are one piece of work, and how it is done. */
struct RecordedWork {
  std::span<const PlannedConversion> conversions;
  std::span<const double> gains_db;
  std::function<std::vector<Converted>()> run;  // one for each; throws Failure
};

/** Does the work, with its beginning and its end recorded. Throws Failure. */
void run_recorded(const ConvertOptions& options, Manifest& manifest, const RecordedWork& work);

/** A job for each directory of inputs and of outputs, which copies what stands beside the sound. */
std::vector<Job> sidecar_jobs(const ConvertOptions& options,
                              const std::vector<PlannedConversion>& plan);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_BATCH_H_
