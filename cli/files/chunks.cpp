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

bool state_significant_bits(int descriptor, uint32_t bits) {
  const auto chunks = chunks_of(descriptor);
  if (!chunks) return true;
  constexpr uint64_t kExtensibleBytes = 40;
  uint64_t place = 0;
  std::array<std::byte, 2> number{};
  const Chunk* common = chunks->find("COMM");
  const Chunk* format = chunks->find("fmt ");
  if (chunks->is_big_endian && common) {
    place = common->offset + 6;
    number[1] = static_cast<std::byte>(bits);
  } else if (format && format->bytes >= kExtensibleBytes) {
    place = format->offset + 18;
    number[0] = static_cast<std::byte>(bits);
  }
  return place == 0 || write_at(descriptor, place, number);
}

bool hide_peaks(int descriptor) {
  const auto chunks = chunks_of(descriptor);
  const Chunk* peaks = chunks ? chunks->find("PEAK") : nullptr;
  if (peaks == nullptr) return true;
  constexpr std::array<char, 4> kSkipped = {'J', 'U', 'N', 'K'};
  const std::vector<std::byte> nothing(static_cast<size_t>(peaks->bytes));
  return write_at(descriptor, peaks->offset - kHeadBytes, std::as_bytes(std::span(kSkipped))) &&
         write_at(descriptor, peaks->offset, nothing);
}

bool append_to_form(int descriptor, std::span<const std::byte> added) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return false;
  auto size = static_cast<uint64_t>(status.st_size);
  const auto chunks = chunks_of(descriptor);
  if (chunks && size % 2 != 0) ++size;  // what is skipped reads as the zero byte that belongs there
  if (!write_at(descriptor, size, added)) return false;
  size += added.size();
  return !chunks || state_form_bytes(descriptor, *chunks, size - kHeadBytes);
}

bool state_form_bytes(int descriptor, const Chunks& chunks, uint64_t bytes) {
  const size_t width = chunks.is_long ? 8 : 4;
  std::array<std::byte, 8> number{};
  for (size_t i = 0; i < width; ++i)
    number[chunks.is_big_endian ? width - 1 - i : i] = static_cast<std::byte>(bytes >> 8 * i);
  // RF64 has its sizes in its first chunk.
  const uint64_t place = chunks.is_long ? 20 : 4;
  return write_at(descriptor, place, std::span(number).first(width));
}

}  // namespace corvin::cli
