// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Bytes that come once, in order, as those of a pipe, with offsets all the same: what was just read is
// kept for a while, for readers step back by a header or by a block of a channel.

#ifndef CORVIN_FORMATS_BYTES_SEQUENTIAL_SOURCE_H_
#define CORVIN_FORMATS_BYTES_SEQUENTIAL_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "formats/bytes/byte_source.h"

namespace corvin::formats {

class SequentialSource : public ByteSource {
 public:
  /// How far back bytes can be read again.
  static constexpr std::size_t kBacklogBytes = 1 << 20;

  SequentialSource() : backlog_(kBacklogBytes) {}

  std::uint64_t Size() const override { return ended_ ? end_ : kUnknownSize; }
  bool IsSequential() const override { return true; }

  /// Takes no more than it needs, so that what follows stays where it is. Fails on what is gone.
  std::size_t Read(std::uint64_t offset, void* to, std::size_t bytes) override;

 private:
  /// The next bytes: their number, 0 at the end, a negative number on failure.
  virtual std::int64_t Next(void* to, std::size_t bytes) = 0;

  bool Fetch(std::uint64_t wanted);

  std::vector<std::uint8_t> backlog_;  // a ring: byte i of the source at i % its size
  std::uint64_t end_ = 0;              // of what came so far
  bool ended_ = false;
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_SEQUENTIAL_SOURCE_H_
