// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Several pieces of work at once, which speak as if one came after the other.

#ifndef CORVIN_CLI_BATCH_JOBS_H_
#define CORVIN_CLI_BATCH_JOBS_H_

#include <functional>
#include <vector>

#include "cli/words/failure.h"

namespace corvin::cli {

/** One piece of work; throws Failure. */
using Job = std::function<void()>;

/** Those of the machine, at least 1. */
unsigned processors();

/** Runs all jobs, `at_once` of them at a time, each to its end whatever becomes of the others. What
 *  a job says comes in one piece, in the order of the jobs.
 *  @return  the exit code of each */
std::vector<ExitCode> run_jobs(const std::vector<Job>& jobs, unsigned at_once);

/** The exit code of a command with several inputs: that of the only one, else kSomeInputsFailed as
 *  soon as one failed, else kDamage as soon as one was damaged. */
ExitCode exit_code_of(const std::vector<ExitCode>& codes);

/** Says how many of several inputs failed, if any did. */
void note_failures(const std::vector<ExitCode>& codes);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_JOBS_H_
