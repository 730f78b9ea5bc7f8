// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Unsigned integers in the byte orders of the files: DSF is little-endian, the other containers and
// the tags are big-endian.

#ifndef CORVIN_FORMATS_BYTES_BYTE_ORDER_H_
#define CORVIN_FORMATS_BYTES_BYTE_ORDER_H_

#include <cstddef>
#include <cstdint>

namespace corvin::formats {

enum class ByteOrder { kLittle, kBig };

/// Reads sizeof(UInt) bytes at `bytes`, which needs no alignment.
template <class UInt>
constexpr UInt Load(ByteOrder order, const std::uint8_t* bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < sizeof(UInt); ++i) {
    value = value << 8 | bytes[order == ByteOrder::kBig ? i : sizeof(UInt) - 1 - i];
  }
  return static_cast<UInt>(value);
}

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_BYTE_ORDER_H_
