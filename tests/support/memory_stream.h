// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file in memory behind a host's callbacks, which can be told to fail.

#ifndef CORVIN_TESTS_SUPPORT_MEMORY_STREAM_H_
#define CORVIN_TESTS_SUPPORT_MEMORY_STREAM_H_

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "corvin.h"

namespace corvin::testing {

struct MemoryStream {
  std::vector<std::uint8_t> bytes;
  std::uint64_t position = 0;
  std::int64_t stated_length = -1;                   ///< instead of the true one unless negative
  int calls_left = std::numeric_limits<int>::max();  ///< until reads and writes fail
  std::size_t most_at_once = std::numeric_limits<std::size_t>::max();

  MemoryStream() = default;
  explicit MemoryStream(std::vector<std::uint8_t> content) : bytes(std::move(content)) {}

  corvin_stream callbacks() {
    corvin_stream stream = {};
    stream.size = sizeof stream;
    stream.user = this;
    stream.seek = [](void* user, std::uint64_t offset) {
      self(user).position = offset;
      return 0;
    };
    stream.read = [](void* user, void* to, std::size_t count) -> std::int64_t {
      MemoryStream& file = self(user);
      if (file.calls_left-- <= 0) return -1;
      const std::uint64_t left =
          file.bytes.size() - std::min<std::uint64_t>(file.position, file.bytes.size());
      count = static_cast<std::size_t>(std::min<std::uint64_t>({count, left, file.most_at_once}));
      if (count > 0) std::memcpy(to, &file.bytes[static_cast<std::size_t>(file.position)], count);
      file.position += count;
      return static_cast<std::int64_t>(count);
    };
    stream.length = [](void* user) {
      const MemoryStream& file = self(user);
      return file.stated_length >= 0 ? file.stated_length
                                     : static_cast<std::int64_t>(file.bytes.size());
    };
    stream.write = [](void* user, const void* from, std::size_t count) {
      MemoryStream& file = self(user);
      if (file.calls_left-- <= 0) return 1;
      const auto at = static_cast<std::size_t>(file.position);
      file.bytes.resize(std::max(file.bytes.size(), at + count));
      std::memcpy(&file.bytes[at], from, count);
      file.position += count;
      return 0;
    };
    return stream;
  }

 private:
  static MemoryStream& self(void* user) { return *static_cast<MemoryStream*>(user); }
};

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_MEMORY_STREAM_H_
