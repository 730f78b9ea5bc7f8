// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin tags: the tags of DSD files, for people and for programs.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/files/dsd_input.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/exit_code.h"
#include "cli/words/unicode_text.h"
#include "corvin.h"

namespace corvin::cli {
namespace {

struct Options {
  std::vector<std::string> paths;
  bool as_json = false;
};

template <size_t size>
std::string text_of(const char (&field)[size]) {
  return {field, strnlen(field, size)};
}

// In the order of printing; the year stands in as a text.
std::vector<std::pair<const char*, std::string>> texts_of(const DSD_TAG& tags) {
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

std::span<DSD_PICTURE* const> pictures_of(const DSD_TAG& tags) {
  return {tags.pictures, static_cast<size_t>(tags.pictureCount)};
}

void print(const std::string& path, const DSD_TAG& tags) {
  std::printf("%s\n", path.c_str());
  bool is_empty = true;
  for (const auto& [name, text] : texts_of(tags)) {
    if (text.empty()) continue;
    std::printf("  %-9s  %s\n", name, printable(text).c_str());
    is_empty = false;
  }
  for (const DSD_PICTURE* picture : pictures_of(tags)) {
    const std::string description = printable(text_of(picture->description));
    std::printf("  picture    type %d, %s, %d bytes%s%s\n", picture->pictureType,
                printable(text_of(picture->mime)).c_str(), picture->dataSize,
                description.empty() ? "" : ", ", description.c_str());
    is_empty = false;
  }
  if (is_empty) std::printf("  no tags\n");
}

void print_json(const std::string& path, const DSD_TAG& tags, bool is_first) {
  std::printf("%s\n  {\"file\": %s", is_first ? "" : ",", json_string(path).c_str());
  for (const auto& [name, text] : texts_of(tags)) {
    if (text.empty()) continue;
    const bool is_number = std::strcmp(name, "year") == 0;
    std::printf(", \"%s\": %s", name, is_number ? text.c_str() : json_string(text).c_str());
  }
  std::printf(", \"pictures\": [");
  const char* separator = "";
  for (const DSD_PICTURE* picture : pictures_of(tags)) {
    std::printf("%s{\"type\": %d, \"mime\": %s, \"description\": %s, \"bytes\": %d}", separator,
                picture->pictureType, json_string(text_of(picture->mime)).c_str(),
                json_string(text_of(picture->description)).c_str(), picture->dataSize);
    separator = ", ";
  }
  std::printf("]}");
}

int run(const Options& options) {
  ExitCode exit_code = kDone;
  bool is_first = true;
  if (options.as_json) std::printf("[");
  for (const std::string& path : options.paths) {
    StudioSource source;
    if (const auto failure = source.open(path)) {
      exit_code = report(path, *failure);
      continue;
    }
    Tags tags;
    if (const int status = corvin_file_get_tags(source.handle(), &tags); status != CORVIN_OK) {
      exit_code = report(path, {kBadInput, corvin_strerror(status)});
      continue;
    }
    if (options.as_json)
      print_json(path, tags, is_first);
    else
      print(path, tags);
    is_first = false;
  }
  if (options.as_json) std::printf("%s]\n", is_first ? "" : "\n");
  return exit_code != kDone && options.paths.size() > 1 ? kSomeInputsFailed : exit_code;
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
