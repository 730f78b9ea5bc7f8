// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/cue/cue_sources.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "cli/cue/flac_cue.h"
#include "cli/words/failure.h"
#include "cli/words/letters.h"
#include "cli/words/loudness.h"

namespace corvin::cli {
namespace {

namespace fs = std::filesystem;

// Sheets come from systems of either kind of slash.
std::string last_part(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }

std::string without_ending(const std::string& path) {
  const size_t name = path.size() - last_part(path).size();
  const size_t point = path.rfind('.');
  return point == std::string::npos || point <= name ? path : path.substr(0, point);
}

std::string stem_of_part(const std::string& path) { return without_ending(last_part(path)); }

bool is_file(const std::string& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

}  // namespace

std::optional<NamedCue> find_cue(const std::string& path, const TagSet& tags, uint32_t rate_hz) {
  for (const std::string& stem : {without_ending(path), path})
    for (const char* ending : {".cue", ".CUE"})
      if (const std::string beside = stem + ending; beside != path && is_file(beside)) {
        note_detail(path, "is split by " + beside);
        return NamedCue{.sheet = read_cue(beside), .name = beside};
      }
  if (const std::string text = tags.value("CUESHEET"); !text.empty()) {
    note_detail(path, "is split by the cue sheet in its tags");
    const std::string name = path + " (cue sheet in its tags)";
    return NamedCue{.sheet = parse_cue(text, name), .name = name};
  }
  if (auto sheet = flac_cue(path, rate_hz)) {
    note_detail(path, "is split by its cue sheet block");
    return NamedCue{.sheet = std::move(*sheet), .name = path};
  }
  return {};
}

size_t file_in_cue(const NamedCue& cue, const std::string& path) {
  const std::vector<std::string>& files = cue.sheet.files;
  const auto find = [&](auto name_of) {
    const std::string wanted = lower_case(name_of(path));
    const auto found = std::find_if(files.begin(), files.end(), [&](const std::string& file) {
      return lower_case(name_of(file)) == wanted;
    });
    return static_cast<size_t>(found - files.begin());
  };
  if (const size_t file = find(last_part); file < files.size()) return file;
  if (const size_t file = find(stem_of_part); file < files.size()) return file;
  if (files.size() == 1) return 0;
  throw Failure(kBadInput, cue.name,
                "names " + std::to_string(files.size()) + " files, none of them like " + path);
}

std::string path_of_cue_file(const NamedCue& cue, size_t file, const std::string& cue_path) {
  const std::string directory = cue_path.substr(0, cue_path.size() - last_part(cue_path).size());
  const std::string named = directory + last_part(cue.sheet.files[file]);
  if (is_file(named)) return named;
  const std::string stem = without_ending(named);
  for (const char* ending :
       {".dsf", ".dff", ".1bit", ".flac", ".wv", ".wav", ".aiff", ".aif", ".caf", ".w64", ".rf64"})
    if (is_file(stem + ending)) return stem + ending;
  throw Failure(kBadInput, cue.name, "names a file that is not there: " + named);
}

}  // namespace corvin::cli
