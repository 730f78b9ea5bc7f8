// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The options on what the tool says, which every command has.

#ifndef CORVIN_CLI_COMMANDS_MANNER_OPTIONS_H_
#define CORVIN_CLI_COMMANDS_MANNER_OPTIONS_H_

namespace CLI {
class App;
}

namespace corvin::cli {

/** Adds --quiet and --verbose to every command below `app`, and --progress to those that take their
 *  time. Parsing sets loudness() before a command runs. */
void add_manner_options(CLI::App& app);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_MANNER_OPTIONS_H_
