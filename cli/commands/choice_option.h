// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Options that take one of several names, turned into the values that the names stand for.

#ifndef CORVIN_CLI_COMMANDS_CHOICE_OPTION_H_
#define CORVIN_CLI_COMMANDS_CHOICE_OPTION_H_

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

#include "cli/commands/commands.h"

namespace corvin::cli {

template <class Value>
struct Choice {
  const char* name;
  Value value;
};

inline constexpr Choice<Engine> kEngines[] = {
    {"studio", Engine::kStudio},
    {"classic", Engine::kClassic},
};

/** Adds an option whose value goes to `chosen`, which must outlive the parsing; help and completions
 *  list the names. Whoever adds it refuses others by a check; without one they would leave `chosen` as
 *  it is. */
template <class Value, size_t count, class Target>
CLI::Option* add_choice(CLI::App& command, const std::string& option, Target& chosen,
                        const Choice<Value> (&choices)[count], const std::string& description) {
  std::string names;
  for (const Choice<Value>& choice : choices)
    names += (names.empty() ? "" : "|") + std::string(choice.name);
  return command
      .add_option_function<std::string>(
          option,
          [&](const std::string& text) {
            for (const Choice<Value>& choice : choices)
              if (text == choice.name) chosen = choice.value;
          },
          description)
      ->type_name(names);
}

/** A check that refuses all names but those of `choices`: "x is not 16, 24 or 32". */
template <class Value, size_t count>
auto one_of(const Choice<Value> (&choices)[count]) {
  return [&choices](const std::string& text) {
    std::string list;
    for (const Choice<Value>& choice : choices) {
      if (text == choice.name) return std::string();
      const bool is_last = &choice == choices + count - 1;
      list += (list.empty() ? "" : is_last ? " or " : ", ") + std::string(choice.name);
    }
    return text + " is not " + list;
  };
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CHOICE_OPTION_H_
