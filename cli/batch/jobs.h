// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Several pieces of work at once, which speak as if one came after the other.

#ifndef CORVIN_CLI_BATCH_JOBS_H_
#define CORVIN_CLI_BATCH_JOBS_H_

#include <functional>
#include <string>
#include <vector>

#include "cli/words/failure.h"

namespace corvin::cli {

/** One piece of work; throws Failure. */
using Job = std::function<void()>;

/** Processors on which this process may run, at least 1. */
unsigned processors();

/** Runs all jobs, `at_once` of them at a time, each to its end whatever becomes of the others. What
 *  a job says comes in one piece, in the order of the jobs.
 *  @param failures  gets what went wrong, "SUBJECT: why", in the order of the jobs; may be null
 *  @return  the exit code of each */
std::vector<ExitCode> run_jobs(const std::vector<Job>& jobs, unsigned at_once,
                               std::vector<std::string>* failures = nullptr);

/** The exit code of a command with several inputs: that of the only one, else kSomeInputsFailed as
 *  soon as one failed, else kDamage as soon as one was damaged. */
ExitCode exit_code_of(const std::vector<ExitCode>& codes);

/** Says how many of several inputs failed, if any did; of many inputs also which and why, as by
 *  then that has long gone by. */
void note_failures(const std::vector<ExitCode>& codes,
                   const std::vector<std::string>& failures = {});

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_JOBS_H_
