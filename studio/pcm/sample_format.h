// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sizes of the caller's samples, the same on the way in and on the way out.

#ifndef CORVIN_STUDIO_PCM_SAMPLE_FORMAT_H_
#define CORVIN_STUDIO_PCM_SAMPLE_FORMAT_H_

#include <cstddef>
#include <cstdint>

#include "corvin.h"

namespace corvin::studio {

inline constexpr std::uint32_t kLastFormat = CORVIN_S20;

/// Bytes of a sample of a corvin_sample_format.
constexpr std::size_t sample_bytes(std::uint32_t format) {
  constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8, 3};
  static_assert(CORVIN_S16 == 0 && kLastFormat + 1 == sizeof kBytes / sizeof kBytes[0]);
  return kBytes[format];
}

constexpr bool is_floating(std::uint32_t format) {
  return format == CORVIN_F32 || format == CORVIN_F64;
}

/// Bits of an integer sample that are not padding, which lies below them.
constexpr unsigned significant_bits(std::uint32_t format) {
  return format == CORVIN_S20 ? 20 : static_cast<unsigned>(8 * sample_bytes(format));
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PCM_SAMPLE_FORMAT_H_
