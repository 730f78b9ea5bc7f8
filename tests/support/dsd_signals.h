// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Bit streams for tests, one value of +1 or -1 per sample, and their packing into bytes. Seeds are
// fixed: a failure comes back.

#ifndef CORVIN_TESTS_SUPPORT_DSD_SIGNALS_H_
#define CORVIN_TESTS_SUPPORT_DSD_SIGNALS_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace corvin::testing {

using Bits = std::vector<std::int8_t>;

inline Bits RandomBits(std::size_t samples, std::uint64_t seed) {
  Bits bits(samples);
  std::uint64_t state = seed * 2654435769u + 1;
  for (auto& bit : bits) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    bit = static_cast<std::int8_t>((state >> 63) != 0 ? 1 : -1);
  }
  return bits;
}

/// A sine through a plain second-order modulator; `amplitude` is the modulation depth, 0..0.5.
inline Bits ToneBits(std::size_t samples, double frequency_hz, double rate_hz, double amplitude) {
  Bits bits(samples);
  double first = 0, second = 0;
  for (std::size_t i = 0; i < samples; ++i) {
    const double in = amplitude * std::sin(2 * std::numbers::pi * frequency_hz *
                                           static_cast<double>(i) / rate_hz);
    const double out = second >= 0 ? 1.0 : -1.0;
    first += in - out;
    second += first - 2.0 * out;
    bits[i] = static_cast<std::int8_t>(out);
  }
  return bits;
}

/// Packs whole bytes; the samples of a last partial byte are dropped.
inline std::vector<std::uint8_t> PackBits(const Bits& bits, bool lsb_first) {
  std::vector<std::uint8_t> bytes(bits.size() / 8);
  for (std::size_t i = 0; i < bytes.size() * 8; ++i)
    if (bits[i] > 0)
      bytes[i / 8] =
          static_cast<std::uint8_t>(bytes[i / 8] | 1u << (lsb_first ? i % 8 : 7 - i % 8));
  return bytes;
}

/// One byte per channel in turn.
inline std::vector<std::uint8_t> Interleave(
    const std::vector<std::vector<std::uint8_t>>& channels) {
  std::vector<std::uint8_t> out;
  for (std::size_t i = 0; i < channels.front().size(); ++i)
    for (const auto& channel : channels) out.push_back(channel[i]);
  return out;
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_DSD_SIGNALS_H_
