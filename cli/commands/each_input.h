// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Commands that take several files: a bad one does not keep the others from being looked at.

#ifndef CORVIN_CLI_COMMANDS_EACH_INPUT_H_
#define CORVIN_CLI_COMMANDS_EACH_INPUT_H_

#include <string>
#include <vector>

#include "cli/words/failure.h"

namespace corvin::cli {

/** Calls `work` with each path and reports the Failures that it throws.
 *  @return  kDone; the failure's code when the only input failed, else kSomeInputsFailed */
template <class Work>
ExitCode for_each_input(const std::vector<std::string>& paths, Work work) {
  ExitCode exit_code = kDone;
  for (const std::string& path : paths) {
    try {
      work(path);
    } catch (const Failure& failure) {
      exit_code = report(failure);
    }
  }
  return exit_code != kDone && paths.size() > 1 ? kSomeInputsFailed : exit_code;
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_EACH_INPUT_H_
