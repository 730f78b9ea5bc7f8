// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Names of files among the data on standard output, which people read on a terminal and programs
// elsewhere.

#ifndef CORVIN_CLI_WORDS_STDOUT_NAME_H_
#define CORVIN_CLI_WORDS_STDOUT_NAME_H_

#include <string>
#include <string_view>

namespace corvin::cli {

/** printable() where standard output is a terminal, else on_one_line(), so that a script finds the
 *  file by the name that was printed. Texts from files are printable() for both. */
std::string name_on_stdout(std::string_view name);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_STDOUT_NAME_H_
