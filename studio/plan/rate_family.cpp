// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/rate_family.h"

namespace corvin::studio {
namespace {

std::optional<RateFamily> family_of(std::uint32_t rate, unsigned least, unsigned most) {
  for (std::uint32_t base : {44100u, 48000u}) {
    for (unsigned k = least; k <= most; ++k) {
      if (rate == base << k) return RateFamily{base, k};
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<RateFamily> pcm_family(std::uint32_t rate) { return family_of(rate, 0, 4); }

std::optional<RateFamily> dsd_family(std::uint32_t rate) { return family_of(rate, 6, 9); }

}  // namespace corvin::studio
