// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/pcm/dither_shaper.h"

#include <algorithm>
#include <cmath>

#include "studio/math/exact_math.h"

namespace corvin::studio {
namespace {

// Threshold of hearing in dB (E. Terhardt, "Calculating virtual pitch", Hearing Research 1, 1979),
// limited so that the filter stays gentle where the ear is deaf: beyond 16 kHz everything counts
// alike, and the whole range is kRangeDb.
double weight_db(double hz) {
  constexpr double kRangeDb = 36;
  const double khz = std::clamp(hz, 200.0, 16000.0) / 1000;
  const double bump = khz - 3.3;
  const double threshold = 3.64 * exponential(-0.8 * natural_log(khz)) -
                           6.5 * exponential(-0.6 * bump * bump) + 1e-3 * khz * khz * khz * khz;
  return -std::min(threshold, kRangeDb);
}

}  // namespace

DitherShaper::DitherShaper(double rate) {
  // The whitening filter of the weighted spectrum leaves the least weighted power: autocorrelation
  // of the weight, then Levinson's recursion.
  constexpr int kPoints = 1024;
  std::array<double, kTaps + 1> correlation{};
  for (int k = 0; k < kPoints; ++k) {
    const double weight = from_db(2 * weight_db((k + 0.5) * rate / (2 * kPoints)));
    for (unsigned lag = 0; lag <= kTaps; ++lag) {
      correlation[lag] += weight * turn((2 * k + 1) * static_cast<int>(lag), 4 * kPoints).cosine;
    }
  }
  double power = correlation[0];
  for (unsigned order = 0; order < kTaps; ++order) {
    double reflection = correlation[order + 1];
    for (unsigned i = 0; i < order; ++i) reflection -= taps_[i] * correlation[order - i];
    reflection /= power;
    const std::array<double, kTaps> before = taps_;
    for (unsigned i = 0; i < order; ++i) taps_[i] -= reflection * before[order - 1 - i];
    taps_[order] = reflection;
    power *= 1 - reflection * reflection;
  }
}

void DitherShaper::run(const double* in, std::size_t count, const QuantiseScale& scale,
                       std::uint32_t key, std::uint32_t index, std::int32_t* out,
                       QuantiseTally& tally, State& state) const {
  constexpr double kRounder = 0x1.8p52;
  constexpr std::size_t kBlock = 64;
  // Errors in order of time, so that none has to move for the next sample.
  double errors[kTaps + kBlock];
  std::reverse_copy(state.errors.begin(), state.errors.end(), errors);
  for (std::size_t first = 0; first < count; first += kBlock) {
    const std::size_t end = std::min(count - first, kBlock);
    for (std::size_t k = 0; k < end; ++k) {
      const std::size_t i = first + k;
      double wanted = in[i] * scale.factor;
      // Oldest first: the newest error, on which everything waits, comes last.
      for (unsigned tap = kTaps; tap-- > 0;) wanted -= taps_[tap] * errors[k + kTaps - 1 - tap];
      const double dithered =
          wanted + triangular_dither(key, index + static_cast<std::uint32_t>(i));
      tally.peak = std::max(tally.peak, std::fabs(in[i]));
      if (dithered < scale.low || dithered > scale.high) ++tally.clips;
      const double steps =
          (std::min(std::max(dithered, scale.low), scale.high) + kRounder) - kRounder;
      out[i] = static_cast<std::int32_t>(steps);
      // A limited sample's error would run away through the feedback.
      errors[k + kTaps] = std::clamp(steps - wanted, -2.0, 2.0);
    }
    std::copy(errors + end, errors + end + kTaps, errors);
  }
  std::reverse_copy(errors, errors + kTaps, state.errors.begin());
}

}  // namespace corvin::studio
