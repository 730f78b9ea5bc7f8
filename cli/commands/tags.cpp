// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin tags: the tags of DSD files, for people and for programs.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/commands/each_input.h"
#include "cli/files/dsd_input.h"
#include "cli/words/failure.h"
#include "cli/words/unicode_text.h"
#include "corvin.hpp"

namespace corvin::cli {
namespace {

struct Options {
  std::vector<std::string> paths;
  bool as_json = false;
};

// In the order of printing; the year stands in as a text.
std::vector<std::pair<const char*, std::string>> texts_of(const Tags& tags) {
  return {{"title", text_of(tags.title)},
          {"artist", text_of(tags.artist)},
          {"album", text_of(tags.album)},
          {"year", tags.year != 0 ? std::to_string(tags.year) : ""},
          {"track", text_of(tags.track)},
          {"genre", text_of(tags.genre)},
          {"composer", text_of(tags.composer)},
          {"comment", text_of(tags.comment)},
          {"copyright", text_of(tags.rightsNotice)}};
}

void print(const std::string& path, const Tags& tags) {
  std::printf("%s\n", path.c_str());
  bool is_empty = true;
  for (const auto& [name, text] : texts_of(tags)) {
    if (text.empty()) continue;
    std::printf("  %-9s  %s\n", name, printable(text).c_str());
    is_empty = false;
  }
  for (const DSD_PICTURE* picture : tags.all_pictures()) {
    const std::string description = printable(text_of(picture->description));
    std::printf("  picture    type %d, %s, %d bytes%s%s\n", picture->pictureType,
                printable(text_of(picture->mime)).c_str(), picture->dataSize,
                description.empty() ? "" : ", ", description.c_str());
    is_empty = false;
  }
  if (is_empty) std::printf("  no tags\n");
}

void print_json(const std::string& path, const Tags& tags, bool is_first) {
  std::printf("%s\n  {\"file\": %s", is_first ? "" : ",", json_string(path).c_str());
  for (const auto& [name, text] : texts_of(tags)) {
    if (text.empty()) continue;
    const bool is_number = std::strcmp(name, "year") == 0;
    std::printf(", \"%s\": %s", name, is_number ? text.c_str() : json_string(text).c_str());
  }
  std::printf(", \"pictures\": [");
  const char* separator = "";
  for (const DSD_PICTURE* picture : tags.all_pictures()) {
    std::printf("%s{\"type\": %d, \"mime\": %s, \"description\": %s, \"bytes\": %d}", separator,
                picture->pictureType, json_string(text_of(picture->mime)).c_str(),
                json_string(text_of(picture->description)).c_str(), picture->dataSize);
    separator = ", ";
  }
  std::printf("]}");
}

Tags tags_of(const std::string& path) {
  DsdInput input = DsdInput::open_dsd(path);
  try {
    return input.file().tags();
  } catch (const Error& error) {
    throw Failure(kBadInput, path, error.what());
  }
}

int run(const Options& options) {
  bool is_first = true;
  if (options.as_json) std::printf("[");
  const ExitCode exit_code = for_each_input(options.paths, [&](const std::string& path) {
    const Tags tags = tags_of(path);
    if (options.as_json)
      print_json(path, tags, is_first);
    else
      print(path, tags);
    is_first = false;
  });
  if (options.as_json) std::printf("%s]\n", is_first ? "" : "\n");
  return exit_code;
}

}  // namespace

void add_tags_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("tags", "Tell the tags of DSD files");
  auto options = std::make_shared<Options>();
  command->add_option("FILE", options->paths, "DSDIFF, DSF or 1bit files")->required();
  command->add_flag("--json", options->as_json,
                    "Print a JSON array of one object per readable file. Texts that are not UTF-8 "
                    "are taken as ISO 8859-1");
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
