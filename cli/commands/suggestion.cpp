// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/suggestion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <numeric>
#include <utility>

namespace corvin::cli {
namespace {

// Letters to insert, to leave out or to change: the edit distance, one row at a time.
size_t distance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t changed = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

// The names of the command that was chosen, down to the last level.
std::vector<std::string> names_of(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  std::vector<std::string> names;
  if (!chosen.empty()) names = names_of(*chosen.front());
  for (const CLI::Option* option : app.get_options())
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  if (chosen.empty())
    for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

}  // namespace

std::string suggestion_for(const CLI::App& app, const std::vector<std::string>& words) {
  const std::vector<std::string> names = names_of(app);
  for (const std::string& argument : words) {
    const std::string word = argument.substr(0, argument.find('='));
    size_t least = std::max<size_t>(1, word.size() / 3) + 1;
    std::string nearest;
    for (const std::string& name : names) {
      const size_t changes = distance(word, name);
      if (changes >= least) continue;
      least = changes;
      nearest = name;
    }
    if (!nearest.empty()) return "did you mean " + nearest + "?";
  }
  return "";
}

}  // namespace corvin::cli
