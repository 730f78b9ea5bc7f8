// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What somebody may have meant who mistyped a command or an option.

#ifndef CORVIN_CLI_COMMANDS_SUGGESTION_H_
#define CORVIN_CLI_COMMANDS_SUGGESTION_H_

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace corvin::cli {

/** "did you mean --modulator?", the nearest name of a command or long option to one of the words that
 *  `app` was given and did not know; empty when none is near. */
std::string suggestion_for(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_SUGGESTION_H_
