// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Packed samples as the 32-bit numbers that the coders' libraries take.

#ifndef CORVIN_CLI_FILES_INTEGER_SAMPLES_H_
#define CORVIN_CLI_FILES_INTEGER_SAMPLES_H_

#include <cstdint>
#include <span>
#include <vector>

namespace corvin::cli {

/** Replaces `samples` by the little-endian numbers of `width` bytes, 2 to 4, each shifted down by
 *  `shift` bits. Those of 4 bytes may be floating point, which then keeps its pattern. */
inline void unpack(std::span<const uint8_t> bytes, size_t width, int shift,
                   std::vector<int32_t>& samples) {
  samples.resize(bytes.size() / width);
  const uint8_t* from = bytes.data();
  for (int32_t& sample : samples) {
    uint32_t aligned = 0;  // in the top bits, so that shifting down brings the sign
    for (size_t i = 0; i < width; ++i)
      aligned |= static_cast<uint32_t>(*from++) << (8 * (4 - width + i));
    sample = static_cast<int32_t>(aligned) >> (8 * (4 - static_cast<int>(width)) + shift);
  }
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_INTEGER_SAMPLES_H_
