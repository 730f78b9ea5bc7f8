// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin tags: shows the tags of files, for people and for programs. What changes tags stands beside
// this.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/commands/each_input.h"
#include "cli/commands/tags_edits.h"
#include "cli/files/tagged_file.h"
#include "cli/files/tags_json.h"
#include "cli/words/failure.h"
#include "cli/words/stdout_name.h"
#include "cli/words/unicode_text.h"
#include "corvin.hpp"

namespace corvin::cli {
namespace {

struct Options {
  std::vector<std::string> paths;
  bool as_json = false;
};

void print(const std::string& path, const TagSet& tags) {
  std::printf("%s\n", name_on_stdout(path).c_str());
  for (const std::string& name : tags.names()) {
    uint32_t i = 0;
    for (const std::string& value : tags.values(name)) {
      const std::string language = tags.language(name, i++);
      std::printf("  %-13s  %s%s\n", printable(name).c_str(), printable(value).c_str(),
                  language.empty() ? "" : (" (" + printable(language) + ")").c_str());
    }
  }
  for (const Picture& picture : tags.pictures()) {
    const std::string description = printable(picture.description);
    std::printf("  picture        type %u, %s, %zu bytes%s%s\n", picture.type,
                printable(picture.mime).c_str(), picture.data.size(),
                description.empty() ? "" : ", ", description.c_str());
  }
  for (const TagFrame& frame : tags.frames())
    std::printf("  other frame    %s, %zu bytes\n", printable(frame.id).c_str(), frame.data.size());
  if (tags.empty()) std::printf("  no tags\n");
  std::fflush(stdout);  // keeps notes below what they are about
  for (const std::string& warning : tags.warnings()) note_damage(path, warning);
}

int show(const Options& options) {
  Json all = Json::array();
  const ExitCode exit_code = for_each_input(options.paths, [&](const std::string& path) {
    const TagSet tags = tags_of_file(path);
    if (options.as_json)
      all.push_back(json_of(path, tags, false));
    else
      print(path, tags);
  });
  if (options.as_json) std::printf("%s\n", printable_json(all.dump(2)).c_str());
  return exit_code;
}

void add_show(CLI::App& command, const std::shared_ptr<Options>& options, bool is_required) {
  auto* files = command.add_option("FILE", options->paths,
                                   "DSDIFF, DSF and 1bit files, and PCM files of many kinds");
  if (is_required) files->required();
  command.add_flag("--json", options->as_json,
                   "Print a JSON array of one object per readable file");
}

}  // namespace

void add_tags_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("tags", "Show and change the tags of files");
  auto options = std::make_shared<Options>();
  add_show(*command, options, false);
  command->require_subcommand(0, 1);
  CLI::App* shown = command->add_subcommand("show", "Print them; so does corvin tags FILE");
  add_show(*shown, options, true);
  shown->callback([options, &exit_code] { exit_code = show(*options); });
  add_tags_edits(*command, exit_code);
  command->callback([command, options, &exit_code] {
    if (!command->get_subcommands().empty()) return;
    if (options->paths.empty()) throw CLI::RequiredError("FILE");
    exit_code = show(*options);
  });
}

}  // namespace corvin::cli
