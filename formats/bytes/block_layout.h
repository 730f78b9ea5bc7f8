// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How the bytes of several channels share one row of memory or of a file, and the copying between
// such rows and channels that stand alone.

#ifndef CORVIN_FORMATS_BYTES_BLOCK_LAYOUT_H_
#define CORVIN_FORMATS_BYTES_BLOCK_LAYOUT_H_

#include <cstddef>
#include <cstdint>
#include <limits>

namespace corvin::formats {

/// The channels take turns, with `block` bytes each time. A group is one turn of all of them.
struct BlockLayout {
  std::uint64_t channels = 1;
  std::uint64_t block = 1;

  bool interleaved() const { return block == 1; }
  std::uint64_t group() const { return channels * block; }

  /// Where byte `byte` of a channel stands.
  std::uint64_t Offset(std::uint64_t channel, std::uint64_t byte) const {
    return (byte / block * channels + channel) * block + byte % block;
  }

  /// Bytes of each channel that the first `bytes` of the row hold of all of them.
  std::uint64_t WholeBytes(std::uint64_t bytes) const {
    const std::uint64_t before_last = group() - block;
    const std::uint64_t rest = bytes % group();
    return bytes / group() * block + (rest > before_last ? rest - before_last : 0);
  }

  /// From a channel's byte to its next one, within Run() bytes.
  std::size_t Stride() const { return interleaved() ? static_cast<std::size_t>(channels) : 1; }

  /// For how many bytes from `byte` on that holds.
  std::uint64_t Run(std::uint64_t byte) const {
    return interleaved() ? std::numeric_limits<std::uint64_t>::max() : block - byte % block;
  }
};

/// Copies `bytes` bytes, every `in_stride`th to every `out_stride`th place, with their bits in the
/// other order if `reverse`.
void CopyBytes(const std::uint8_t* in, std::size_t in_stride, std::uint8_t* out,
               std::size_t out_stride, std::size_t bytes, bool reverse);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_BLOCK_LAYOUT_H_
