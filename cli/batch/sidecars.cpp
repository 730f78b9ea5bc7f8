// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/sidecars.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "cli/files/descriptor_bytes.h"
#include "cli/words/letters.h"

namespace corvin::cli {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMostBytes = size_t{1} << 28;
constexpr std::string_view kPictures[] = {".jpg", ".jpeg", ".png",  ".webp",
                                          ".gif", ".bmp",  ".tiff", ".tif"};

// No value: there is no such file.
std::optional<std::string> content_of(const std::string& path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file && errno == ENOENT) return std::nullopt;
  if (!file) throw Failure(kBadInput, path, std::strerror(errno));
  std::string content;
  std::array<char, 1 << 16> bytes;
  while (const size_t got = std::fread(bytes.data(), 1, bytes.size(), file.get())) {
    content.append(bytes.data(), got);
    if (content.size() > kMostBytes) throw Failure(kBadInput, path, "is too large to be copied");
  }
  if (std::ferror(file.get())) throw Failure(kBadInput, path, std::strerror(errno));
  return content;
}

// FILE "name" WAVE: what players look for. Everything else stays as it is, byte for byte.
std::string with_new_names(const std::string& sheet,
                           const std::map<std::string, std::string>& renamed) {
  std::string result;
  for (size_t begin = 0, end; begin < sheet.size(); begin = end) {
    end = std::min(sheet.find('\n', begin), sheet.size() - 1) + 1;
    std::string line = sheet.substr(begin, end - begin);
    const size_t word = line.find_first_not_of(" \t\xef\xbb\xbf");
    const size_t quote = line.find('"');
    const size_t end_quote = line.rfind('"');
    if (word != std::string::npos && quote != end_quote &&
        lower_case(line.substr(word, 5)) == "file ") {
      const auto found = renamed.find(line.substr(quote + 1, end_quote - quote - 1));
      if (found != renamed.end()) line.replace(quote + 1, end_quote - quote - 1, found->second);
    }
    result += line;
  }
  return result;
}

void write_file(OutputFile::Config config, const std::string& content) {
  OutputFile output(std::move(config));
  const auto bytes = std::as_bytes(std::span(content));
  if (!write_at(output.descriptor(), 0, bytes))
    throw Failure(kWriteError, output.path(), std::strerror(errno));
  output.commit();
}

}  // namespace

void copy_sidecars(const std::string& from, const std::string& to,
                   const std::map<std::string, std::string>& renamed,
                   const OutputFile::Config& like) {
  std::error_code error;
  std::vector<std::string> names;
  for (fs::directory_iterator entry(from.empty() ? "." : from, error), end; !error && entry != end;
       entry.increment(error))
    names.push_back(entry->path().filename().string());
  if (error) throw Failure(kBadInput, from, error.message());
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    const std::string ending = lower_case(fs::path(name).extension().string());
    const bool is_sheet = ending == ".cue";
    const bool is_picture =
        std::find(std::begin(kPictures), std::end(kPictures), ending) != std::end(kPictures);
    std::error_code ignored;
    if ((!is_sheet && !is_picture) || !fs::is_regular_file(from + name, ignored)) continue;
    std::string content = content_of(from + name).value_or("");
    if (is_sheet) content = with_new_names(content, renamed);
    if (content_of(to + name) == content) continue;
    OutputFile::Config config = like;
    config.path = to + name;
    config.input_path = from + name;
    write_file(std::move(config), content);
  }
}

}  // namespace corvin::cli
