// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The texts of a CAF file's information chunk.

#ifndef CORVIN_CLI_FILES_CAF_INFO_H_
#define CORVIN_CLI_FILES_CAF_INFO_H_

#include <string>
#include <utility>
#include <vector>

namespace corvin::cli {

/** Pairs of a name and a value of the file at `path`; none when it has none or is of another kind. */
std::vector<std::pair<std::string, std::string>> caf_info(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_CAF_INFO_H_
