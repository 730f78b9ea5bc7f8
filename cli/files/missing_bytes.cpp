// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/missing_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "cli/files/chunks.h"
#include "cli/files/descriptor_bytes.h"

namespace corvin::cli {
namespace {

// What writers to pipes state, who cannot go back: about two or four GiB.
bool leaves_open(uint64_t stated) { return stated >= 0x7ffff000 && stated <= UINT32_MAX; }

uint64_t beyond(uint64_t stated, uint64_t there) { return stated > there ? stated - there : 0; }

std::optional<uint64_t> missing_in_chunks(int descriptor) {
  const auto chunks = chunks_of(descriptor);
  if (!chunks) return {};
  const Chunk* sound = chunks->find(chunks->is_big_endian ? "SSND" : "data");
  if (sound == nullptr || (leaves_open(sound->stated) && !chunks->is_long)) return 0;
  return sound->stated - sound->bytes;
}

// A stretch of a file as text; shorter at its end.
class Bytes {
 public:
  Bytes(int descriptor, uint64_t offset) {
    const int64_t got = read_at(descriptor, offset, std::as_writable_bytes(std::span(bytes_)));
    size_ = static_cast<size_t>(std::max<int64_t>(0, got));
  }
  bool starts_with(std::string_view text) const {
    return std::string_view(bytes_.data(), size_).starts_with(text);
  }
  uint64_t big_endian(size_t at, size_t width) const {
    uint64_t number = 0;
    for (size_t i = 0; i < width; ++i) number = number << 8 | static_cast<uint8_t>(bytes_[at + i]);
    return number;
  }
  uint64_t little_endian(size_t at) const {
    uint64_t number = 0;
    for (size_t i = 8; i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes_[at + i]);
    return number;
  }
  size_t size() const { return size_; }

 private:
  std::array<char, 24> bytes_{};
  size_t size_ = 0;
};

uint64_t missing_in_caf(int descriptor, uint64_t size) {
  constexpr uint64_t kHeadBytes = 12;
  for (uint64_t place = 8; place + kHeadBytes <= size;) {
    const Bytes head(descriptor, place);
    const uint64_t stated = head.big_endian(4, 8);
    const uint64_t there = size - place - kHeadBytes;
    constexpr uint64_t kOpen = UINT64_MAX;
    if (head.starts_with("data")) return stated == kOpen ? 0 : beyond(stated, there);
    if (stated > there) return stated - there;
    place += kHeadBytes + stated;
  }
  return 0;
}

uint64_t missing_in(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return 0;
  const auto size = static_cast<uint64_t>(status.st_size);
  if (const auto missing = missing_in_chunks(descriptor)) return *missing;
  const Bytes head(descriptor, 0);
  if (head.starts_with("caff")) return missing_in_caf(descriptor, size);
  // The whole file's size follows its identifier.
  if (head.starts_with("riff\x2e\x91\xcf\x11")) return beyond(head.little_endian(16), size);
  if (head.starts_with(".snd") && head.size() >= 12) {
    const uint64_t stated = head.big_endian(8, 4);
    return leaves_open(stated) ? 0 : beyond(head.big_endian(4, 4) + stated, size);
  }
  return 0;
}

}  // namespace

uint64_t missing_bytes(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return 0;
  const uint64_t missing = missing_in(descriptor);
  close(descriptor);
  return missing;
}

}  // namespace corvin::cli
