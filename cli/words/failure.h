// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How the tool ends and what it says on standard error. Scripts rely on the exit codes; --help
// lists them.

#ifndef CORVIN_CLI_WORDS_FAILURE_H_
#define CORVIN_CLI_WORDS_FAILURE_H_

#include <stdexcept>
#include <string>

namespace corvin::cli {

enum ExitCode : int {
  kDone = 0,
  kSomeInputsFailed = 1,  // of several
  kUsage = 2,             // the command line asks for what the tool will not do
  kBadInput = 3,          // unreadable or unsupported
  kWriteError = 4,
  kVerifyFailed = 5,  // what was written is not what should have been
  kDamage = 6,        // done, but something of the input is damaged
};

/** Ends the work on an input, and the command unless it has others: what went wrong with which
 *  subject, a file or an option. */
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, std::string subject, const std::string& message)
      : std::runtime_error(message), code_(code), subject_(std::move(subject)) {}

  ExitCode code() const { return code_; }
  const std::string& subject() const { return subject_; }

 private:
  ExitCode code_;
  std::string subject_;
};

/** Says what went wrong and returns the failure's code. */
ExitCode report(const Failure& failure);

/** From now on messages on `path` name it so. Before there are several threads. */
void call_in_messages(const std::string& path, const std::string& name);

/** Says what the user should know about `subject`, unless he wants quiet; nothing has failed. */
void note(const std::string& subject, const std::string& message);

/** Says what is damaged in `subject`, of which the rest was good enough to go on. Unless something
 *  worse comes up the tool ends with kDamage. */
void note_damage(const std::string& subject, const std::string& message);

/** Turns kDone into kDamage when any thread has noted damage. */
ExitCode with_damage(ExitCode code);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_FAILURE_H_
