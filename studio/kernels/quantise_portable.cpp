// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference.

#include "studio/kernels/quantise.h"

#include <algorithm>
#include <cmath>

namespace corvin::studio {
namespace {

void run(const double* in, std::size_t count, const QuantiseScale& scale, std::uint32_t key,
         std::uint32_t index, std::int32_t* out, QuantiseTally& tally) {
  // Added and taken away again, it leaves the nearest integer; rint() is a library call on some
  // processors.
  constexpr double kRounder = 0x1.8p52;
  for (std::size_t i = 0; i < count; ++i) {
    double steps = in[i] * scale.factor;
    if (scale.dither) steps += triangular_dither(key, index + static_cast<std::uint32_t>(i));
    tally.peak = std::max(tally.peak, std::fabs(in[i]));
    if (steps < scale.low || steps > scale.high) ++tally.clips;
    steps = std::min(std::max(steps, scale.low), scale.high);
    out[i] = static_cast<std::int32_t>((steps + kRounder) - kRounder);
  }
}

}  // namespace

extern const QuantiseVariant quantise_portable = {kPortable, run};

}  // namespace corvin::studio
