// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/manner_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string>

#include "cli/commands/choice_option.h"
#include "cli/words/loudness.h"

namespace corvin::cli {
namespace {

constexpr Choice<ProgressStyle> kStyles[] = {
    {"lines", ProgressStyle::kLines},
    {"json", ProgressStyle::kJson},
    {"none", ProgressStyle::kNone},
};

bool takes_time(const std::string& command) {
  constexpr const char* kLong[] = {"convert", "check",  "fix",  "hash",    "remux",
                                   "encode",  "decode", "join", "measure", "split"};
  return std::find(std::begin(kLong), std::end(kLong), command) != std::end(kLong);
}

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
    if (takes_time(command->get_name()))
      add_choice(
          *command, "--progress", loudness().progress, kStyles,
          "How far things are, on standard error: lines, on a terminal only; json, an object "
          "a second for each file at work; none; by default lines")
          ->check(one_of(kStyles));
    add_manner_options(*command);
  }
}

}  // namespace corvin::cli
