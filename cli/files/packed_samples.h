// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What PcmInput reads as the packed samples that PcmWriter takes: little-endian, integers from the top
// of an int.

#ifndef CORVIN_CLI_FILES_PACKED_SAMPLES_H_
#define CORVIN_CLI_FILES_PACKED_SAMPLES_H_

#include <cstdint>
#include <span>
#include <vector>

#include "cli/files/pcm_kind.h"

namespace corvin::cli {

/** Appends samples to `to`. */
inline void pack(std::span<const double> samples, corvin_sample_format format,
                 std::vector<uint8_t>& to) {
  const auto append = [&](const auto& sample) {
    const auto* first = reinterpret_cast<const uint8_t*>(&sample);
    to.insert(to.end(), first, first + sizeof sample);
  };
  for (const double sample : samples) {
    if (format == CORVIN_F32)
      append(static_cast<float>(sample));
    else
      append(sample);
  }
}

/** Appends the `width` highest bytes of each. */
inline void pack_bytes(std::span<const int> samples, size_t width, std::vector<uint8_t>& to) {
  for (const int sample : samples)
    for (size_t i = 4 - width; i < 4; ++i)
      to.push_back(static_cast<uint8_t>(static_cast<uint32_t>(sample) >> (8 * i)));
}

inline void pack(std::span<const int> samples, corvin_sample_format format,
                 std::vector<uint8_t>& to) {
  pack_bytes(samples, bytes_of(format), to);
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PACKED_SAMPLES_H_
