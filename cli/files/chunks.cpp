// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/chunks.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "cli/files/descriptor_bytes.h"

namespace corvin::cli {
namespace {

constexpr uint64_t kHeadBytes = 8;     // id and size of a chunk
constexpr size_t kMostChunks = 65536;  // more than any file has

uint64_t number(const char* from, size_t bytes, bool is_big_endian) {
  uint64_t value = 0;
  for (size_t i = 0; i < bytes; ++i)
    value = value << 8 | static_cast<uint8_t>(from[is_big_endian ? i : bytes - 1 - i]);
  return value;
}

template <size_t bytes>
bool read_whole(int descriptor, uint64_t offset, std::array<char, bytes>& to) {
  return read_at(descriptor, offset, std::as_writable_bytes(std::span(to))) ==
         static_cast<int64_t>(bytes);
}

}  // namespace

const Chunk* Chunks::find(std::string_view id) const {
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Chunk& chunk) { return chunk.id == id; });
  return found == all.end() ? nullptr : &*found;
}

std::optional<Chunks> chunks_of(int descriptor) {
  struct stat status;
  std::array<char, 12> head{};
  if (fstat(descriptor, &status) != 0 || !read_whole(descriptor, 0, head)) return {};
  const auto size = static_cast<uint64_t>(status.st_size);
  const std::string_view form(head.data(), 4);
  const std::string_view kind(&head[8], 4);
  Chunks chunks;
  chunks.is_big_endian = form == "FORM" && (kind == "AIFF" || kind == "AIFC");
  chunks.is_long = form == "RF64" && kind == "WAVE";
  if (!chunks.is_big_endian && !chunks.is_long && !(form == "RIFF" && kind == "WAVE")) return {};
  uint64_t long_sound = 0;
  std::array<char, kHeadBytes> start{};
  for (uint64_t place = head.size(); place + kHeadBytes <= size &&
                                     chunks.all.size() < kMostChunks &&
                                     read_whole(descriptor, place, start);) {
    Chunk chunk{.id = std::string(start.data(), 4), .offset = place + kHeadBytes};
    chunk.stated = number(&start[4], 4, chunks.is_big_endian);
    std::array<char, 16> sizes{};
    if (chunks.is_long && chunk.id == "ds64" && read_whole(descriptor, chunk.offset, sizes))
      long_sound = number(&sizes[8], 8, false);
    if (chunks.is_long && chunk.id == "data" && chunk.stated == UINT32_MAX)
      chunk.stated = long_sound;
    chunk.bytes = std::min(chunk.stated, size - chunk.offset);
    place = chunk.offset + chunk.bytes + chunk.bytes % 2;
    chunks.all.push_back(std::move(chunk));
  }
  return chunks;
}

}  // namespace corvin::cli
