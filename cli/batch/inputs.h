// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The files that a command works on: those named, and those found in directories.

#ifndef CORVIN_CLI_BATCH_INPUTS_H_
#define CORVIN_CLI_BATCH_INPUTS_H_

#include <functional>
#include <string>
#include <vector>

namespace corvin::cli {

struct Input {
  std::string path;
  std::string below;    // the subdirectory that it was found in, "disc 1/"; empty for named files
  std::string problem;  // for a directory that could not be read: why
};

/** The files of `paths`, in their order; what is in a directory by the order of the names' bytes,
 *  without what is hidden by a point at the beginning. Symbolic links are followed to files, not to directories that were not named.
 *  @param recursive  directories stand for what is in and below them; else they are refused
 *  @param wanted     whether a file found in a directory is one, by its path
 *  Throws Failure. */
std::vector<Input> collect_inputs(const std::vector<std::string>& paths, bool recursive,
                                  const std::function<bool(const std::string&)>& wanted);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_INPUTS_H_
