// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Moves one-bit samples within bytes: sound that was cut in the middle of a byte gets back to where
// it stood in the whole.

#ifndef CORVIN_STUDIO_STREAM_SAMPLE_SHIFT_H_
#define CORVIN_STUDIO_STREAM_SAMPLE_SHIFT_H_

#include <cstddef>
#include <cstdint>

namespace corvin::studio {

/// A byte `shift` samples later, 1..7, behind the last samples of the byte before it.
constexpr std::uint8_t shifted(std::uint8_t before, std::uint8_t byte, unsigned shift,
                               bool lsb_first) {
  return static_cast<std::uint8_t>(lsb_first ? before >> (8 - shift) | byte << shift
                                             : before << (8 - shift) | byte >> shift);
}

/// Moves `count` bytes on by `shift` samples, 1..7. What stood last in `before` comes first; returns
/// the last byte as it was, `before` of the next ones.
inline std::uint8_t shift_samples(std::uint8_t before, unsigned shift, bool lsb_first,
                                  std::size_t count, std::uint8_t* bytes) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t byte = bytes[i];
    bytes[i] = shifted(before, byte, shift, lsb_first);
    before = byte;
  }
  return before;
}

/// The byte whose last `shift` samples, 1..7, are the first ones of `byte`.
constexpr std::uint8_t placed_last(std::uint8_t byte, unsigned shift, bool lsb_first) {
  return static_cast<std::uint8_t>(lsb_first ? byte << (8 - shift) : byte >> (8 - shift));
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_SAMPLE_SHIFT_H_
