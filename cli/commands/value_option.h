// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Options whose text stands for a value, or for none and is refused.

#ifndef CORVIN_CLI_COMMANDS_VALUE_OPTION_H_
#define CORVIN_CLI_COMMANDS_VALUE_OPTION_H_

#include <CLI/CLI.hpp>
#include <string>

namespace corvin::cli {

/** Adds an option that `parse` makes a value of, or refuses by saying that it is not `wanted`. The
 *  value goes to `target`, which must outlive the parsing. */
template <class Target, class Parse>
CLI::Option* add_value(CLI::App& command, const std::string& option, Target& target, Parse parse,
                       const std::string& wanted, const std::string& description) {
  return command
      .add_option_function<std::string>(
          option, [&target, parse](const std::string& text) { target = *parse(text); }, description)
      ->check([parse, wanted](const std::string& text) {
        return parse(text) ? std::string() : text + " is not " + wanted;
      });
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_VALUE_OPTION_H_
