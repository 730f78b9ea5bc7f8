// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Which folder may include which. The rules keep the containers and the compact converter usable
// alone, the two directions apart and the tool on the public side.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A folder may always include its own files and the public headers. Folders that are not named
// here (tests, benchmarks, generators) reach what they work on.
// clang-format off
const std::map<std::string, std::vector<std::string>> kMayInclude = {
    {"formats", {}},
    {"classic", {"formats"}},
    {"studio", {"formats"}},
    {"include", {}},
    {"cli", {}},
    {"examples", {}},
};
// clang-format on

const fs::path kRoot = CORVIN_SOURCE_DIR;

// What is wrong with the #include lines of `text`, a file of `folder`.
std::vector<std::string> breaches(const std::string& folder, const std::string& text) {
  static const std::regex include_line(R"(^\s*#\s*include\s*([<"])([^">]+)[">])");
  std::vector<std::string> found;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (!std::regex_search(line, match, include_line)) continue;
    const bool quoted = match[1] == "\"";
    const fs::path path = match[2].str();
    const std::string first = path.begin()->string();
    const bool names_folder = std::next(path.begin()) != path.end() && kMayInclude.contains(first);
    if (!names_folder) {
      const bool is_public = fs::exists(kRoot / "include" / path);
      const bool is_generated = path.extension() == ".inc";
      const bool from_root = std::next(path.begin()) != path.end() && fs::exists(kRoot / path);
      const bool outside = kMayInclude.contains(folder) && from_root;  // tests/, bench/, tools/
      if ((quoted && !is_public && !is_generated && !from_root) || outside) found.push_back(line);
      continue;
    }
    const auto rule = kMayInclude.find(folder);
    if (rule == kMayInclude.end() || first == folder) continue;
    if (std::find(rule->second.begin(), rule->second.end(), first) == rule->second.end())
      found.push_back(line);
  }
  return found;
}

std::string contents(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

TEST(IncludeRules, AreKeptInTheWholeTree) {
  int files = 0;
  for (const auto& folder : fs::directory_iterator(kRoot)) {
    const std::string name = folder.path().filename().string();
    if (!folder.is_directory() || name == "build" || name[0] == '.') continue;
    for (const auto& file : fs::recursive_directory_iterator(folder)) {
      static const std::vector<std::string> kSources = {".h", ".hpp", ".c", ".cpp", ".inc"};
      const std::string extension = file.path().extension().string();
      if (std::find(kSources.begin(), kSources.end(), extension) == kSources.end()) continue;
      ++files;
      for (const std::string& line : breaches(name, contents(file.path())))
        ADD_FAILURE() << fs::relative(file.path(), kRoot).string() << ": " << line;
    }
  }
  EXPECT_GT(files, 10) << "the walk over " << kRoot << " misses the sources";
}

TEST(IncludeRules, CatchBreaches) {
  const struct {
    const char* folder;
    const char* line;
    bool allowed;
  } kCases[] = {
      {"cli", "#include \"corvin.h\"", true},
      {"cli", "#include \"cli/commands/commands.h\"", true},
      {"cli", "#include <sndfile.h>", true},
      {"cli", "#include \"classic/foundation/platform.h\"", false},
      {"cli", "#  include <classic/foundation/platform.h>", false},
      {"cli", "#include \"commands.h\"", false},  // not from the root
      {"classic", "#include \"formats/container.h\"", true},
      {"classic", "#include \"studio/math/exact_math.h\"", false},
      {"formats", "#include \"classic/foundation/platform.h\"", false},
      {"classic", "#include \"tests/cli/../boundaries/include_rules_test.cpp\"", false},
      {"tests", "#include \"classic/foundation/platform.h\"", true},
      {"studio", "#include \"dot_variants.inc\"", true},
  };
  for (const auto& one : kCases)
    EXPECT_EQ(breaches(one.folder, one.line).empty(), one.allowed) << one.folder << ' ' << one.line;
}

}  // namespace
