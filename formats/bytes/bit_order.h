// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Samples in bytes: the two orders they stand in, silence in each, and a last byte that is only
// partly used.

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

/// No sound, the earliest sample in the most significant bit: as many ones as zeros, and their tone
/// far above hearing.
inline constexpr std::uint8_t kSilence = 0x69;

constexpr std::uint8_t SilentByte(bool lsb_first) {
  return lsb_first ? kReversedBits[kSilence] : kSilence;
}

/// Bytes that hold so many samples.
constexpr std::uint64_t BytesOf(std::uint64_t samples) { return samples / 8 + (samples % 8 != 0); }

/// Silences what stands behind the last of `samples` samples in the byte that holds it.
constexpr void SilenceBehind(std::uint64_t samples, bool lsb_first, std::uint8_t& last) {
  const auto used = static_cast<unsigned>(samples % 8);
  if (used == 0) return;
  const unsigned kept = lsb_first ? (1u << used) - 1 : 0xffu & ~(0xffu >> used);
  last = static_cast<std::uint8_t>((last & kept) | (SilentByte(lsb_first) & ~kept));
}

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_BIT_ORDER_H_
