// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What corvin join makes of its inputs, once its options are values: whether they fit each other, and
// what is said of the whole.

#ifndef CORVIN_CLI_COMMANDS_JOIN_FILES_H_
#define CORVIN_CLI_COMMANDS_JOIN_FILES_H_

#include <optional>
#include <string>
#include <vector>

#include "cli/files/output_kind.h"

namespace corvin::cli {

struct JoinOptions {
  std::vector<std::string> inputs;
  std::string output;
  std::optional<OutputKind> kind;
  std::optional<std::string> cue;  // to be written
  bool verify = false;
  bool overwrite = false;
  bool force = false;
};

/** Joins the inputs. Throws Failure. */
void join_files(const JoinOptions& options);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_JOIN_FILES_H_
