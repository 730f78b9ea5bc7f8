// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/caf_info.h"

#include <cstdint>
#include <fstream>
#include <string_view>

namespace corvin::cli {
namespace {

constexpr uint64_t kMostBytes = 1 << 24;  // more than any texts take

}  // namespace

std::vector<std::pair<std::string, std::string>> caf_info(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const auto size = static_cast<uint64_t>(file.tellg());
  char head[12];
  if (!file.seekg(0) || !file.read(head, 8) || std::string_view(head, 4) != "caff") return {};
  std::string chunk;
  for (uint64_t place = 8; place + sizeof head <= size;) {
    if (!file.seekg(static_cast<std::streamoff>(place)) || !file.read(head, sizeof head)) return {};
    uint64_t bytes = 0;
    for (int i = 4; i < 12; ++i) bytes = bytes << 8 | static_cast<uint8_t>(head[i]);
    place += sizeof head;
    if (bytes > size - place) return {};
    if (std::string_view(head, 4) == "info" && bytes > 4 && bytes <= kMostBytes) {
      chunk.resize(static_cast<size_t>(bytes));
      if (!file.read(chunk.data(), static_cast<std::streamsize>(bytes))) return {};
      break;
    }
    place += bytes;
  }
  std::vector<std::pair<std::string, std::string>> texts;
  std::string_view rest(chunk);
  const auto next = [&] {
    const std::string_view text = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(rest.size(), text.size() + 1));
    return std::string(text);
  };
  rest.remove_prefix(std::min<size_t>(4, rest.size()));  // their number, which the end tells too
  while (!rest.empty()) {
    std::string name = next();
    std::string value = next();
    if (!name.empty()) texts.emplace_back(std::move(name), std::move(value));
  }
  return texts;
}

}  // namespace corvin::cli
