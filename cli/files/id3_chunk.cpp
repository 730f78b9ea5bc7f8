// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/id3_chunk.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace corvin::cli {
namespace {

constexpr uint64_t kMostBytes = (1 << 28) + 20;  // of a block, header and footer included

}  // namespace

std::vector<std::byte> id3_chunk(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const auto size = static_cast<uint64_t>(file.tellg());
  std::array<char, 12> head{};
  file.seekg(0);
  if (!file.read(head.data(), head.size())) return {};
  const std::string_view form(head.data(), 4);
  const std::string_view kind(&head[8], 4);
  const bool is_wav = (form == "RIFF" || form == "RF64") && kind == "WAVE";
  const bool is_aiff = form == "FORM" && (kind == "AIFF" || kind == "AIFC");
  if (!is_wav && !is_aiff) return {};
  uint64_t long_sound = 0;  // of RF64, whose sound chunk may state none
  for (uint64_t place = head.size(); place + 8 <= size;) {
    std::array<char, 8> start{};
    if (!file.seekg(static_cast<std::streamoff>(place)) || !file.read(start.data(), start.size()))
      return {};
    uint64_t bytes = 0;
    for (int i = 0; i < 4; ++i)
      bytes = bytes << 8 | static_cast<uint8_t>(start[static_cast<size_t>(is_wav ? 7 - i : 4 + i)]);
    const std::string_view id(start.data(), 4);
    if (id == "ds64" && form == "RF64") {
      std::array<char, 16> sizes{};
      file.read(sizes.data(), sizes.size());
      for (size_t i = 16; i-- > 8;) long_sound = long_sound << 8 | static_cast<uint8_t>(sizes[i]);
    }
    if (id == "data" && bytes == UINT32_MAX && long_sound != 0) bytes = long_sound;
    place += 8;
    if (id == "id3 " || id == "ID3 ") {
      if (bytes > size - place || bytes > kMostBytes) return {};
      std::vector<std::byte> block(static_cast<size_t>(bytes));
      file.read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(bytes));
      return block;
    }
    if (bytes > size - place) return {};
    place += bytes + bytes % 2;
  }
  return {};
}

}  // namespace corvin::cli
