// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Every function of the public C headers has its comment, which says since when there is one; and
// corvin.hpp calls every function that is not the classic engine's.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kHeaders = fs::path(CORVIN_SOURCE_DIR) / "include";

/// The functions of a header, and the lines of those without a full comment.
struct Functions {
  std::set<std::string> names;
  std::vector<std::string> undocumented;
};

Functions FunctionsOf(std::istream& header) {
  static const std::regex name(R"((\w+)\()");
  Functions found;
  std::string comment;
  bool inside = false;
  for (std::string line; std::getline(header, line);) {
    const auto text = line.substr(std::min(line.find_first_not_of(' '), line.size()));
    if (text.starts_with("/**")) comment.clear();
    if (text.starts_with("/*")) inside = true;
    std::smatch match;
    if (inside) {
      comment += text;
      inside = !text.ends_with("*/");
    } else if (text.starts_with("CORVIN_API") && std::regex_search(text, match, name)) {
      found.names.insert(match[1]);
      if (!comment.starts_with("/**") || comment.find("Since ") == std::string::npos)
        found.undocumented.push_back(line);
      comment.clear();
    } else {
      comment.clear();
    }
  }
  return found;
}

Functions FunctionsOf(const fs::path& name) {
  std::ifstream header(kHeaders / name);
  return FunctionsOf(header);
}

TEST(Documentation, IsThereForEveryFunction) {
  std::size_t functions = 0;
  for (const auto& header : fs::directory_iterator(kHeaders)) {
    if (header.path().extension() != ".h") continue;
    const Functions found = FunctionsOf(header.path());
    functions += found.names.size();
    for (const std::string& line : found.undocumented)
      ADD_FAILURE() << header.path().filename().string() << ": " << line;
  }
  EXPECT_GT(functions, 80U) << "functions are missed";
}

TEST(Documentation, IsMissedWhereThereIsNone) {
  std::istringstream header(
      "/** Says so. Since 0.1. */\nCORVIN_API int one(void);\n"
      "CORVIN_API int two(void);\n/** Does not say so. */\nCORVIN_API int three(void);\n");
  EXPECT_EQ(FunctionsOf(header).undocumented.size(), 2U);
}

TEST(Wrapper, CallsEveryFunction) {
  // Their better-named or better-reading twins are there.
  const std::set<std::string> kLeftOut = {"DSDTag", "id3tag_write_v2"};
  std::ostringstream wrapper;
  wrapper << std::ifstream(kHeaders / "corvin.hpp").rdbuf();
  for (const char* header :
       {"corvin.h", "corvin_studio.h", "corvin_studio_files.h", "corvin_tags.h"}) {
    for (const std::string& name : FunctionsOf(header).names) {
      if (kLeftOut.contains(name)) continue;
      EXPECT_NE(wrapper.str().find(name + "("), std::string::npos) << header << ": " << name;
    }
  }
}

}  // namespace
