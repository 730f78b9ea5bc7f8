// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Every function of the public C headers has its comment, which says since when there is one.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

/// Reports undocumented functions and returns how many functions there are.
int CheckHeader(const std::string& name) {
  std::ifstream header(std::string(CORVIN_SOURCE_DIR) + "/include/" + name);
  int functions = 0;
  std::string comment;
  bool inside = false;
  for (std::string line; std::getline(header, line);) {
    const auto text = line.substr(std::min(line.find_first_not_of(' '), line.size()));
    if (text.starts_with("/**")) comment.clear();
    if (text.starts_with("/*")) inside = true;
    if (inside) {
      comment += text;
      inside = !text.ends_with("*/");
    } else if (text.starts_with("CORVIN_API") && text.find('(') != std::string::npos) {
      ++functions;
      EXPECT_TRUE(comment.starts_with("/**") && comment.find("Since ") != std::string::npos)
          << name << ": " << text;
      comment.clear();
    } else {
      comment.clear();
    }
  }
  return functions;
}

TEST(Documentation, IsThereForEveryFunction) {
  EXPECT_GT(CheckHeader("corvin.h"), 30);
  EXPECT_GT(CheckHeader("corvin_studio.h"), 10);
}

}  // namespace
