// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The two orders of the samples in a byte, and silence in each.

#ifndef CORVIN_FORMATS_BYTES_BIT_ORDER_H_
#define CORVIN_FORMATS_BYTES_BIT_ORDER_H_

#include <array>
#include <cstdint>

namespace corvin::formats {

/// Each byte with its bits in the other order.
inline constexpr std::array<std::uint8_t, 256> kReversedBits = [] {
  std::array<std::uint8_t, 256> table{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      if ((byte >> bit & 1) != 0)
        table[byte] = static_cast<std::uint8_t>(table[byte] | 0x80 >> bit);
    }
  }
  return table;
}();

/// Four ones and four zeros whose sound is far above hearing.
constexpr std::uint8_t SilentByte(bool lsb_first) { return lsb_first ? 0x96 : 0x69; }

/// Replaces all but the earliest `samples` (0..8) samples of a byte by silence.
constexpr std::uint8_t SilencedBehind(std::uint8_t byte, unsigned samples, bool lsb_first) {
  const unsigned kept = lsb_first ? (1u << samples) - 1 : 0xffu & ~(0xffu >> samples);
  return static_cast<std::uint8_t>((byte & kept) | (SilentByte(lsb_first) & ~kept));
}

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_BIT_ORDER_H_
