// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin completion: what a shell has to know to complete the tool's command line.

#include <CLI/CLI.hpp>

#include "cli/commands/choice_option.h"
#include "cli/commands/commands.h"
#include "cli/commands/completion_scripts.h"

namespace corvin::cli {
namespace {

using Script = std::string(const CLI::App& app);

constexpr Choice<Script*> kShells[] = {
    {"bash", bash_completion},
    {"zsh", zsh_completion},
    {"fish", fish_completion},
};

}  // namespace

void add_completion_command(CLI::App& app, int&) {
  CLI::App* command =
      app.add_subcommand("completion", "Print a script that has a shell complete the command line");
  const auto script = std::make_shared<Script*>(nullptr);
  add_choice(*command, "SHELL", *script, kShells, "bash, zsh or fish")
      ->required()
      ->check(one_of(kShells));
  command->callback([&app, script] { std::cout << (*script)(app); });
}

}  // namespace corvin::cli
