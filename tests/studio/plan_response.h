// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The frequency response of a decoder plan, summed from the taps and bins that its kernels use.

#ifndef CORVIN_TESTS_STUDIO_PLAN_RESPONSE_H_
#define CORVIN_TESTS_STUDIO_PLAN_RESPONSE_H_

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include "studio/kernels/spectral.h"
#include "studio/plan/decode_plan.h"

namespace corvin::studio {

class PlanResponse {
 public:
  explicit PlanResponse(const DecodePlan& plan)
      : plan_(plan), row_rate_(static_cast<double>(plan.config.dsd_rate) / plan.total_decimation) {
    const SpectralShape& shape = plan.shape;
    std::vector<double> bins(2 * shape.forward.points);
    for (std::size_t place = 0; place < shape.inverse.points; ++place) {
      const std::size_t at = shape.source[place];
      if (shape.response[2 * place] == 0 && shape.response[2 * place + 1] == 0) continue;
      // Conjugated, so that the forward transform below inverts.
      bins[2 * at] = shape.response[2 * place];
      bins[2 * at + 1] = -shape.response[2 * place + 1];
    }
    spectral_portable.from_bins(shape.forward, bins.data());
    for (std::size_t i = 0; i < shape.forward.points; ++i) kernel_.push_back(bins[2 * i]);
  }

  /// Gain of the steep filter's kernel at `hz`, of an input of one row each.
  double steep(double hz) const {
    // The kernel lies around row 0 of the circle: unrolled there, only its phase would change.
    const std::complex<double> step = std::polar(1.0, -2 * M_PI * hz / row_rate_);
    std::complex<double> turn = 1.0;
    std::complex<double> sum = 0.0;
    const std::size_t points = kernel_.size();
    for (std::size_t i = 0; i < points; ++i, turn *= step) {
      if (i % 64 == 0)
        turn = std::polar(1.0, -2 * M_PI * hz / row_rate_ * (double(i) - double(points / 2)));
      sum += kernel_[(i + points / 2) % points] * turn;
    }
    return std::abs(sum);
  }

  /// Gain of the decimators at `hz`.
  double decimators(double hz) const {
    double gain = symmetric(plan_.bit_taps, hz / plan_.config.dsd_rate);
    if (!plan_.fold_taps.empty()) {
      gain *= symmetric(plan_.fold_taps, hz / (row_rate_ * plan_.fold_boxcars->decimation()));
    }
    return std::fabs(gain);
  }

  /// Gain of a sine at `hz` of the DSD stream; a peak of 50 % modulation makes one of 1.
  double gain(double hz) const { return steep(hz) * decimators(hz) / 2; }

  struct Figures {
    double ripple_db, stop_db, alias_db;
  };

  /// Largest deviation from 0 dB up to the pass edge; largest gain from the stop edge to half the
  /// transform's input rate; largest gain of what folds onto the pass band from beyond.
  Figures figures() const {
    Figures result = {0, -400, -400};
    const double pass = plan_.config.pass_hz;
    const double stop = plan_.config.stop_hz;
    const auto db = [](double gain) { return 20 * std::log10(std::max(gain, 1e-20)); };
    constexpr int kPassPoints = 300;
    constexpr int kStopPoints = 400;
    constexpr int kBandPoints = 24;
    for (int i = 0; i <= kPassPoints; ++i) {
      result.ripple_db = std::max(result.ripple_db, std::fabs(db(gain(pass * i / kPassPoints))));
    }
    for (int i = 0; i <= kStopPoints; ++i) {
      // Denser near the edge.
      const double part = static_cast<double>(i) / kStopPoints;
      result.stop_db =
          std::max(result.stop_db, db(gain(stop + (row_rate_ / 2 - stop) * part * part)));
    }
    std::vector<double> offsets;
    std::vector<double> steeps;
    for (int i = -kBandPoints; i <= kBandPoints; ++i) {
      offsets.push_back(stop * i / kBandPoints);
      steeps.push_back(gain(std::fabs(offsets.back())) / decimators(std::fabs(offsets.back())));
    }
    for (unsigned k = 1; k <= plan_.total_decimation / 2; ++k) {
      for (std::size_t i = 0; i < offsets.size(); ++i) {
        const double hz = k * row_rate_ + offsets[i];
        result.alias_db = std::max(result.alias_db, db(steeps[i] * decimators(hz)));
      }
    }
    return result;
  }

 private:
  template <typename Tap>
  static double symmetric(const std::vector<Tap>& taps, double frequency) {
    const double middle = static_cast<double>(taps.size() - 1) / 2;
    double sum = 0;
    for (std::size_t i = 0; i < taps.size() / 2; ++i) {
      sum += 2.0 * taps[i] * std::cos(2 * M_PI * frequency * (static_cast<double>(i) - middle));
    }
    if (taps.size() % 2 != 0) sum += taps[taps.size() / 2];
    return sum;
  }

  const DecodePlan& plan_;
  double row_rate_;
  std::vector<double> kernel_;
};

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_STUDIO_PLAN_RESPONSE_H_
