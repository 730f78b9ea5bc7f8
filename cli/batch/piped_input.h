// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Inputs that are no files: standard input as "-", named pipes, what a shell puts in place of a
// command. They are read to their end before anything is converted.

#ifndef CORVIN_CLI_BATCH_PIPED_INPUT_H_
#define CORVIN_CLI_BATCH_PIPED_INPUT_H_

#include <memory>
#include <string>

#include "cli/files/unnamed_file.h"

namespace corvin::cli {

/** The content of the input when it is a pipe; null when it is a file, or is not there. Messages on
 *  the content's path name the input. Throws Failure. */
std::shared_ptr<const UnnamedFile> content_of_pipe(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_PIPED_INPUT_H_
