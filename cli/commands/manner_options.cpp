// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/manner_options.h"

#include <CLI/CLI.hpp>

#include "cli/commands/choice_option.h"
#include "cli/words/loudness.h"

namespace corvin::cli {
namespace {

constexpr Choice<ProgressStyle> kStyles[] = {
    {"lines", ProgressStyle::kLines},
    {"json", ProgressStyle::kJson},
    {"none", ProgressStyle::kNone},
};

}  // namespace

void add_manner_options(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    CLI::Option* quiet = command->add_flag_function(
        "-q,--quiet",
        [](std::int64_t) {
          loudness().is_quiet = true;
          if (loudness().progress == ProgressStyle::kLines)
            loudness().progress = ProgressStyle::kNone;
        },
        "Say nothing but what goes wrong");
    command
        ->add_flag_function(
            "-v,--verbose", [](std::int64_t) { loudness().is_verbose = true; },
            "Say how things are done, too")
        ->excludes(quiet);
    if (command->get_name() == "convert")
      add_choice(
          *command, "--progress", loudness().progress, kStyles,
          "How far things are, on standard error: lines, on a terminal only; json, an object "
          "a second for each file at work; none; by default lines")
          ->type_name("KIND")
          ->check(one_of(kStyles));
    add_manner_options(*command);
  }
}

}  // namespace corvin::cli
