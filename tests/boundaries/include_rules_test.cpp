// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Which folder may include which, and that the tests' folders are those of the sources. The rules
// keep the containers and the compact converter usable alone, the two engines and the two directions
// apart and the tool on the public side.

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

// The floors of a folder, from the top; "" is the folder itself, without those inside. Each uses
// those below it and none beside it. A folder that is on no floor neither uses the others nor is
// used by them.
const std::map<std::string, std::vector<std::vector<std::string>>> kFloors = {
    {"formats", {{""}, {"tags"}, {"bytes"}}},
    {"classic", {{"decode", "encode", "stream"}, {"files"}, {"foundation"}}},
    {"studio", {{"c_api"}, {"convert"}, {"decode", "encode"}, {"stream", "pcm"},
                {"modulator", "plan"}, {"kernels"}, {"math", "threads"}}},
    {"cli", {{""}, {"commands"}, {"mend"}, {"measure"}, {"convert", "classic", "batch", "cue", "plot"},
             {"files"}, {"words"}}},
};
// clang-format on

const fs::path kRoot = CORVIN_SOURCE_DIR;

// The first folder of a path from the root, and the folder inside that one.
std::string house_of(const fs::path& path) { return path.begin()->string(); }
std::string room_of(const fs::path& path) {
  const auto room = std::next(path.begin());
  return std::next(room) == path.end() ? "" : room->string();
}

bool may_enter(const std::string& house, const std::string& from, const std::string& to) {
  const auto floors = kFloors.find(house);
  if (floors == kFloors.end() || from == to) return true;
  std::ptrdiff_t from_floor = -1;
  std::ptrdiff_t to_floor = -1;
  for (std::size_t floor = 0; floor < floors->second.size(); ++floor)
    for (const std::string& room : floors->second[floor]) {
      if (room == from) from_floor = static_cast<std::ptrdiff_t>(floor);
      if (room == to) to_floor = static_cast<std::ptrdiff_t>(floor);
    }
  return from_floor >= 0 && to_floor > from_floor;
}

// What is wrong with the #include lines of `text`, the file at `place` from the root.
std::vector<std::string> breaches(const fs::path& place, const std::string& text) {
  static const std::regex include_line(R"(^\s*#\s*include\s*([<"])([^">]+)[">])");
  const std::string house = house_of(place);
  const auto rule = kMayInclude.find(house);
  std::vector<std::string> found;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (!std::regex_search(line, match, include_line)) continue;
    const bool quoted = match[1] == "\"";
    const fs::path path = match[2].str();
    const bool names_folder = std::next(path.begin()) != path.end();
    const std::string first = house_of(path);
    bool allowed = true;
    if (!names_folder || !kMayInclude.contains(first)) {
      const bool is_public = fs::exists(kRoot / "include" / path);
      const bool is_generated = path.extension() == ".inc";
      const bool from_root = names_folder && fs::exists(kRoot / path);
      const bool outside = rule != kMayInclude.end() && from_root;  // tests/, bench/, tools/
      allowed = !outside && (!quoted || is_public || is_generated || from_root);
    } else if (first == house) {
      allowed = may_enter(house, room_of(place), room_of(path));
    } else if (rule != kMayInclude.end()) {
      allowed = std::find(rule->second.begin(), rule->second.end(), first) != rule->second.end();
    }
    if (!allowed) found.push_back(line);
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
      const fs::path place = fs::relative(file.path(), kRoot);
      for (const std::string& line : breaches(place, contents(file.path())))
        ADD_FAILURE() << place.string() << ": " << line;
    }
  }
  EXPECT_GT(files, 10) << "the walk over " << kRoot << " misses the sources";
}

TEST(IncludeRules, CatchBreaches) {
  const struct {
    const char* file;
    const char* line;
    bool allowed;
  } kCases[] = {
      {"cli/main.cpp", "#include \"corvin.h\"", true},
      {"cli/main.cpp", "#include \"cli/commands/commands.h\"", true},
      {"cli/main.cpp", "#include <sndfile.h>", true},
      {"cli/main.cpp", "#include \"classic/foundation/platform.h\"", false},
      {"cli/main.cpp", "#  include <classic/foundation/platform.h>", false},
      {"cli/commands/info.cpp", "#include \"commands.h\"", false},  // not from the root
      {"cli/files/dsd_input.h", "#include \"cli/commands/commands.h\"", false},
      {"classic/files/dsd_info.cpp", "#include \"formats/container.h\"", true},
      {"classic/files/dsd_info.cpp", "#include \"studio/math/exact_math.h\"", false},
      {"classic/decode/quantise.cpp", "#include \"classic/foundation/platform.h\"", true},
      {"classic/dsd2pcm/dsd2pcm.cpp", "#include \"classic/foundation/platform.h\"", false},
      {"classic/stream/converter.cpp", "#include \"classic/dsd2pcm/taps.h\"", false},
      {"classic/stream/x.cpp", "#include \"tests/cli/../boundaries/x.cpp\"", false},
      {"formats/sound_tags.cpp", "#include \"formats/tags/tag_text.h\"", true},
      {"formats/tags/genres.cpp", "#include \"formats/container.h\"", false},
      {"formats/tags/genres.cpp", "#include \"classic/foundation/platform.h\"", false},
      {"studio/kernels/x86/dot_avx2.cpp", "#include \"studio/kernels/dot.h\"", true},
      {"studio/kernels/choose.cpp", "#include \"dot_variants.inc\"", true},
      {"studio/kernels/choose.cpp", "#include \"studio/plan/boxcars.h\"", false},
      {"studio/decode/decoder.h", "#include \"studio/math/exact_math.h\"", true},
      {"studio/decode/decoder.h", "#include \"studio/encode/encoder.h\"", false},
      {"tests/cli/x.cpp", "#include \"classic/foundation/platform.h\"", true},
  };
  for (const auto& one : kCases)
    EXPECT_EQ(breaches(one.file, one.line).empty(), one.allowed) << one.file << ' ' << one.line;
}

// Whoever looks for the tests of a folder finds them under the same name.
TEST(IncludeRules, TestsMirrorTheFolders) {
  for (const char* house : {"formats", "classic", "studio"})
    for (const auto& folder : fs::recursive_directory_iterator(kRoot / "tests" / house)) {
      if (!folder.is_directory()) continue;
      const fs::path place = fs::relative(folder.path(), kRoot / "tests");
      EXPECT_TRUE(fs::is_directory(kRoot / place)) << "tests/" << place.string();
    }
}

}  // namespace
