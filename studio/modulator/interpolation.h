// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The last step up, from an eighth of the DSD rate to the DSD rate: a short symmetric filter, as
// eight phases. Its images lie at 8ths of the DSD rate, far up in the shaped noise, so four taps a
// phase do for sources of 44.1 and 48 kHz.

#ifndef CORVIN_STUDIO_MODULATOR_INTERPOLATION_H_
#define CORVIN_STUDIO_MODULATOR_INTERPOLATION_H_

namespace corvin::studio {

class Interpolation {
 public:
  static constexpr int kPhases = 8;
  static constexpr int kMaxTaps = 6;

  /// Least squares: 1 up to the band's edge (0.068 of the input rate, 24 kHz at DSD64; wide: 0.142,
  /// 50 kHz), 0 in its images.
  explicit Interpolation(bool wide_band);

  /// Taps a phase, 4 or 6.
  int taps() const { return taps_; }
  /// Input samples before sample k that the bits from 8k to 8k + 7 need; they also need the
  /// taps() / 2 samples after it.
  int history() const { return taps_ / 2 - 1; }
  /// The value at bit 8k + phase is the sum over j < taps() of tap(phase, j) x sample
  /// k - history() + j. Sample k itself lies on bit 8k.
  double tap(int phase, int j) const { return phases_[phase][j]; }

  /// Gain at `frequency` in parts of the input rate, so that filters before it can undo its droop;
  /// real, since the filter is symmetric. The loop behind it passes the signal with gain 1.
  double response(double frequency) const;

 private:
  int taps_;
  double phases_[kPhases][kMaxTaps] = {};
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_INTERPOLATION_H_
