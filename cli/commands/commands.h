// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tool's commands: one file <name>.cpp each, which declares the command's options and runs it
// when it is chosen. A new command is one new file and its line in the list here.

#ifndef CORVIN_CLI_COMMANDS_COMMANDS_H_
#define CORVIN_CLI_COMMANDS_COMMANDS_H_

namespace CLI {
class App;
}

namespace corvin::cli {

/** What --engine chooses from. */
enum class Engine { kStudio, kClassic };

/** Adds a command to `app`. When parsing meets it, it runs and leaves its ExitCode in `exit_code`,
 *  or throws Failure; both arguments must outlive the parsing. */
using AddCommand = void(CLI::App& app, int& exit_code);

AddCommand add_info_command, add_tags_command, add_convert_command, add_check_command,
    add_completion_command, add_dop_command, add_fix_command, add_hash_command, add_join_command,
    add_measure_command, add_plan_command, add_remux_command, add_split_command;

/** In the order of --help. */
inline constexpr AddCommand* kCommands[] = {
    add_info_command,       add_tags_command,    add_convert_command, add_check_command,
    add_completion_command, add_dop_command,     add_fix_command,     add_hash_command,
    add_join_command,       add_measure_command, add_plan_command,    add_remux_command,
    add_split_command,
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_COMMANDS_H_
