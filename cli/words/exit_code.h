// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How the tool ends. Scripts rely on these numbers; --help lists them.

#ifndef CORVIN_CLI_WORDS_EXIT_CODE_H_
#define CORVIN_CLI_WORDS_EXIT_CODE_H_

#include <string>

namespace corvin::cli {

enum ExitCode : int {
  kDone = 0,
  kSomeInputsFailed = 1,  // of several
  kUsage = 2,             // the command line asks for what the tool will not do
  kBadInput = 3,          // unreadable or unsupported
  kWriteError = 4,
  kInterrupted = 130,  // by a signal
};

struct Failure {
  ExitCode code;
  std::string message;
};

/** Says what went wrong with `subject` on standard error and returns the failure's code. */
ExitCode report(const std::string& subject, const Failure& failure);

/** Says on standard error what the user should know about `subject`; nothing has failed. */
void note(const std::string& subject, const std::string& message);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_EXIT_CODE_H_
