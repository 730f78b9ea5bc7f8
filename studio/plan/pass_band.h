// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Which band a conversion passes: the edges that are asked for, and those it takes by itself.

#ifndef CORVIN_STUDIO_PLAN_PASS_BAND_H_
#define CORVIN_STUDIO_PLAN_PASS_BAND_H_

#include <optional>

#include "studio/plan/rate_family.h"

namespace corvin::studio {

struct PassBand {
  double pass_hz = 0;  ///< flat up to here
  double stop_hz = 0;  ///< closed from here on
};

/// All that a transition of 5 % leaves below `half_hz`, half the rate that bounds the band.
PassBand full_band(double half_hz);

/// What lies below the noise that the modulator of DSD of a rate moved out of the way, or the full
/// band where that is narrower.
PassBand sound_band(const RateFamily& dsd, double half_hz);

/// The band that becomes PCM: the same up to DSD128, the full one above, where the noise lies far
/// beyond hearing and what PCM of such rates is wanted for.
PassBand decoder_band(const RateFamily& dsd, double half_hz);

/// The band `wanted`, in which a stop_hz of 0 means `half_hz`, a pass_hz of 0 the transition of the
/// full band, and both 0 `usual`. Nothing unless 0 < pass_hz < stop_hz <= half_hz with a transition
/// of 3 % of half_hz at least.
std::optional<PassBand> choose_band(const PassBand& wanted, double half_hz, const PassBand& usual);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_PASS_BAND_H_
