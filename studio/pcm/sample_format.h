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

/// Bytes of a sample of a corvin_sample_format.
constexpr std::size_t sample_bytes(std::uint32_t format) {
  constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8};
  static_assert(CORVIN_S16 == 0 && CORVIN_F64 + 1 == sizeof kBytes / sizeof kBytes[0]);
  return kBytes[format];
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PCM_SAMPLE_FORMAT_H_
