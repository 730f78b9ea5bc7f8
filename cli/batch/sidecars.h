// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What stands beside the sound and belongs to it: pictures of covers, and cue sheets, which name the
// sound's files.

#ifndef CORVIN_CLI_BATCH_SIDECARS_H_
#define CORVIN_CLI_BATCH_SIDECARS_H_

#include <map>
#include <string>

#include "cli/files/output_file.h"

namespace corvin::cli {

/** Copies the pictures and cue sheets of a directory into another one, unless they are there as they
 *  should be. In the copies of cue sheets the files of `renamed`, by their names in the directory,
 *  have their new names.
 *  @param like  how to treat older files: overwrite, force, preserve_time
 *  Throws Failure. */
void copy_sidecars(const std::string& from, const std::string& to,
                   const std::map<std::string, std::string>& renamed,
                   const OutputFile::Config& like);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_SIDECARS_H_
