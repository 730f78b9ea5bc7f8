// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/sequential_source.h"

#include <algorithm>
#include <cstring>

namespace corvin::formats {

// Takes at most `wanted` further bytes. False when there are none.
bool SequentialSource::Fetch(std::uint64_t wanted) {
  if (ended_ || failed_) return false;
  const auto place = static_cast<std::size_t>(end_ % kBacklogBytes);
  const auto room =
      static_cast<std::size_t>(std::min<std::uint64_t>(wanted, kBacklogBytes - place));
  const std::int64_t got = Next(&backlog_[place], room);
  failed_ = got < 0;
  ended_ = got == 0;
  if (got <= 0) return false;
  end_ += static_cast<std::uint64_t>(got);
  return true;
}

std::size_t SequentialSource::Read(std::uint64_t offset, void* to, std::size_t bytes) {
  if (offset < end_ && end_ - offset > kBacklogBytes) {
    failed_ = true;
    return 0;
  }
  std::size_t done = 0;
  while (done < bytes) {
    const std::uint64_t at = offset + done;
    if (at >= end_) {
      if (!Fetch(at - end_ + (bytes - done))) break;
      continue;
    }
    const auto place = static_cast<std::size_t>(at % kBacklogBytes);
    const auto count = static_cast<std::size_t>(
        std::min<std::uint64_t>({bytes - done, end_ - at, kBacklogBytes - place}));
    std::memcpy(static_cast<std::uint8_t*>(to) + done, &backlog_[place], count);
    done += count;
  }
  return done;
}

}  // namespace corvin::formats
