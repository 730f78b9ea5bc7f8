// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Scripts that have a shell complete the tool's command line. All they know comes from the parser's own
// commands and options, so that they cannot differ from them.

#ifndef CORVIN_CLI_COMMANDS_COMPLETION_SCRIPTS_H_
#define CORVIN_CLI_COMMANDS_COMPLETION_SCRIPTS_H_

#include <string>

namespace CLI {
class App;
}

namespace corvin::cli {

/** For bash, to be sourced. */
std::string bash_completion(const CLI::App& app);

/** For zsh, as a file _corvin in a directory of $fpath, or to be sourced behind compinit. */
std::string zsh_completion(const CLI::App& app);

/** For fish, to be sourced. */
std::string fish_completion(const CLI::App& app);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_COMPLETION_SCRIPTS_H_
