// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Names of files from a list that another program has made, as find and git do.

#ifndef CORVIN_CLI_BATCH_FILE_LIST_H_
#define CORVIN_CLI_BATCH_FILE_LIST_H_

#include <string>
#include <vector>

namespace corvin::cli {

/** The names in a file, or in standard input for "-": one on each line, or between zero bytes. Empty
 *  ones are left out. Throws Failure, also for a list that no list of names is so long as. */
std::vector<std::string> read_file_list(const std::string& path, bool zero_terminated);

/** Where a file of a list comes below the directory for outputs: "a/b/" for "a/b/c.dsf", for
 *  "./a/b/c.dsf" and for "/a/b/c.dsf"; empty for a name that goes upwards. */
std::string directory_below(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_FILE_LIST_H_
