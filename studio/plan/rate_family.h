// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The two families of rates: 44100 and 48000 Hz, doubled any number of times.

#ifndef CORVIN_STUDIO_PLAN_RATE_FAMILY_H_
#define CORVIN_STUDIO_PLAN_RATE_FAMILY_H_

#include <cstdint>
#include <optional>

namespace corvin::studio {

struct RateFamily {
  std::uint32_t base;  ///< 44100 or 48000
  unsigned doublings;
};

/// The family of a PCM rate, x 1 .. 16; nothing for any other rate.
std::optional<RateFamily> pcm_family(std::uint32_t rate);

/// The family of a DSD rate, x 64 .. 512; nothing for any other rate.
std::optional<RateFamily> dsd_family(std::uint32_t rate);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_RATE_FAMILY_H_
