// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/file_list.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

// Millions of names; more is a file of something else.
constexpr size_t kMostBytes = size_t{1} << 28;

std::string content_of(const std::string& path) {
  const std::string name = path == "-" ? "standard input" : path;
  const std::unique_ptr<FILE, int (*)(FILE*)> opened(
      path == "-" ? nullptr : std::fopen(path.c_str(), "rb"), std::fclose);
  FILE* const file = path == "-" ? stdin : opened.get();
  if (!file) throw Failure(kBadInput, name, std::strerror(errno));
  std::string content;
  std::array<char, 1 << 16> bytes;
  while (const size_t got = std::fread(bytes.data(), 1, bytes.size(), file)) {
    content.append(bytes.data(), got);
    if (content.size() > kMostBytes) throw Failure(kBadInput, name, "is too long for a list");
  }
  if (std::ferror(file)) throw Failure(kBadInput, name, std::strerror(errno));
  return content;
}

}  // namespace

std::vector<std::string> read_file_list(const std::string& path, bool zero_terminated) {
  const std::string content = content_of(path);
  // A list of zero bytes read as lines would be one name that ends at the first of them.
  if (!zero_terminated && content.find('\0') != std::string::npos)
    throw Failure(kUsage, "--files-from", path + " has zero bytes between its names; -0 reads it");
  std::vector<std::string> names;
  for (size_t begin = 0, end; begin < content.size(); begin = end + 1) {
    end = std::min(content.find(zero_terminated ? '\0' : '\n', begin), content.size());
    std::string name = content.substr(begin, end - begin);
    if (!zero_terminated && name.ends_with('\r')) name.pop_back();
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

std::string directory_below(const std::string& path) {
  std::string below;
  for (size_t begin = 0, end; (end = path.find('/', begin)) != std::string::npos; begin = end + 1) {
    const std::string part = path.substr(begin, end - begin);
    if (part == "..") return "";
    if (!part.empty() && part != ".") below += part + "/";
  }
  return below;
}

}  // namespace corvin::cli
