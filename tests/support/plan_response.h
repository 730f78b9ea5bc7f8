// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The frequency response of a decoder plan, summed from the taps and bins that its kernels use.

#ifndef CORVIN_TESTS_SUPPORT_PLAN_RESPONSE_H_
#define CORVIN_TESTS_SUPPORT_PLAN_RESPONSE_H_

#include "studio/plan/decode_plan.h"
#include "tests/support/filter_response.h"

namespace corvin::studio {

class PlanResponse {
 public:
  explicit PlanResponse(const DecodePlan& plan)
      : plan_(plan),
        row_rate_(static_cast<double>(plan.config.dsd_rate) / plan.total_decimation),
        kernel_(input_kernel(plan.shape)) {}

  /// Gain of a sine at `hz` of the DSD stream; a peak of 50 % modulation makes one of 1.
  double gain(double hz) const { return steep(hz) * decimators(hz); }

  struct Figures {
    double ripple_db, stop_db, alias_db;
  };

  /// Largest deviation from 0 dB up to the pass edge; largest gain from the stop edge to half the
  /// transform's input rate; largest gain of what folds onto the pass band from beyond.
  Figures figures() const {
    const double pass = plan_.config.pass_hz;
    const double stop = plan_.config.stop_hz;
    constexpr int kPassPoints = 300;
    constexpr int kStopPoints = 400;
    constexpr int kBandPoints = 24;
    Figures result;
    result.ripple_db = largest(
        0, kPassPoints, [&](int i) { return std::fabs(to_db(gain(pass * i / kPassPoints))); });
    result.stop_db = largest(0, kStopPoints, [&](int i) {
      const double part = static_cast<double>(i) / kStopPoints;  // denser near the edge
      return to_db(gain(stop + (row_rate_ / 2 - stop) * part * part));
    });
    result.alias_db = largest(-kBandPoints, kBandPoints, [&](int i) {
      const double offset = stop * i / kBandPoints;
      const double once = steep(std::fabs(offset));
      return largest(1, static_cast<int>(plan_.total_decimation / 2),
                     [&](int k) { return to_db(once * decimators(k * row_rate_ + offset)); });
    });
    return result;
  }

 private:
  // Gain of the steep filter, of an input of one row each.
  double steep(double hz) const { return std::abs(spectrum(kernel_, hz / row_rate_)) / 2; }

  double decimators(double hz) const {
    double gain = symmetric(plan_.bit_taps, hz / plan_.config.dsd_rate);
    if (!plan_.fold_taps.empty()) {
      gain *= symmetric(plan_.fold_taps, hz / (row_rate_ * plan_.fold_boxcars->decimation()));
    }
    return std::fabs(gain);
  }

  template <typename Tap>
  static double symmetric(const std::vector<Tap>& taps, double frequency) {
    const double middle = static_cast<double>(taps.size() - 1) / 2;
    double sum = taps.size() % 2 != 0 ? taps[taps.size() / 2] : 0;
    for (std::size_t i = 0; i < taps.size() / 2; ++i) {
      sum += 2.0 * taps[i] * std::cos(2 * M_PI * frequency * (static_cast<double>(i) - middle));
    }
    return sum;
  }

  const DecodePlan& plan_;
  double row_rate_;
  std::vector<double> kernel_;
};

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_PLAN_RESPONSE_H_
