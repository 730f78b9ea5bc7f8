// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Quantising with noise moved to where the ear hears least: nine taps of error feedback behind a
// triangular dither. Serial in time by nature, so it has one build and belongs to the ordered
// output.

#ifndef CORVIN_STUDIO_PCM_DITHER_SHAPER_H_
#define CORVIN_STUDIO_PCM_DITHER_SHAPER_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "studio/kernels/quantise.h"

namespace corvin::studio {

class DitherShaper {
 public:
  static constexpr unsigned kTaps = 9;

  /// What one channel remembers; all 0 at the start.
  struct State {
    std::array<double, kTaps> errors{};  // newest first
  };

  /// The feedback that leaves the least noise weighted by the ear's sensitivity at `rate` Hz.
  explicit DitherShaper(double rate);

  /// As the Quantise kernel, always dithered.
  void run(const double* in, std::size_t count, const QuantiseScale& scale, std::uint32_t key,
           std::uint32_t index, std::int32_t* out, QuantiseTally& tally, State& state) const;

  /// Quantisation noise appears at the output filtered by 1 - sum of taps()[i] z^-(i + 1).
  const std::array<double, kTaps>& taps() const { return taps_; }

 private:
  std::array<double, kTaps> taps_{};
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PCM_DITHER_SHAPER_H_
