// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tool's commands. Each file <name>_command.cpp declares its own options and runs the command
// when it is chosen, so that a new command is one new file and one line here and in main.cpp.

#ifndef CORVIN_CLI_COMMANDS_COMMANDS_H_
#define CORVIN_CLI_COMMANDS_COMMANDS_H_

namespace CLI {
class App;
}

namespace corvin::cli {

/** Adds a command to `app`. When parsing meets it, it runs and leaves its ExitCode in `exit_code`;
 *  both arguments must outlive the parsing. */
void add_info_command(CLI::App& app, int& exit_code);
void add_convert_command(CLI::App& app, int& exit_code);
void add_tags_command(CLI::App& app, int& exit_code);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_COMMANDS_H_
