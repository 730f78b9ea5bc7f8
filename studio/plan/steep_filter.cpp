// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/steep_filter.h"

#include <cmath>

#include "studio/kernels/spectral.h"
#include "studio/math/exact_math.h"

namespace corvin::studio {

std::vector<double> kaiser_low_pass(double rate, double pass, double stop, double attenuation_db) {
  const double beta = 0.1102 * (attenuation_db - 8.7);
  const double width = stop - pass;
  const double cut = (stop + pass) / rate;  // in half rates
  const auto count =
      static_cast<std::size_t>(std::ceil((attenuation_db - 7.95) * rate / (14.36 * width) + 1)) | 1;
  const std::size_t middle = count / 2;
  std::vector<double> taps(count);
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) - static_cast<double>(middle);
    const double x = t / static_cast<double>(middle);
    const double sinc = t == 0 ? cut : sine_cosine(kPi * cut * t).sine / (kPi * t);
    taps[i] = sinc * bessel_i0(beta * std::sqrt(1 - x * x)) / bessel_i0(beta);
    sum += taps[i];
  }
  for (double& tap : taps) tap /= sum;
  return taps;
}

namespace {

// Turns a zero-phase response in digit-reversed places into the minimum-phase one of the same
// magnitude, by the folded cepstrum (Oppenheim and Schafer, "Discrete-Time Signal Processing",
// section on minimum-phase sequences). The magnitude's floor keeps zeros out of the logarithm.
void make_minimum_phase(const FftPlan& plan, std::vector<double>& rows) {
  constexpr double kFloorDb = -165;
  const double floor = from_db(kFloorDb);
  const std::size_t points = plan.points;
  for (std::size_t i = 0; i < points; ++i) {
    rows[2 * i] = natural_log(std::fmax(std::fabs(rows[2 * i]), floor));
    rows[2 * i + 1] = 0;
  }
  spectral_portable.from_bins(plan, rows.data());  // real and even: the sign does not matter
  for (std::size_t i = 0; i < points; ++i) {
    const double fold = i == 0 || 2 * i == points ? 1.0 : 2 * i < points ? 2.0 : 0.0;
    rows[2 * i] *= fold / static_cast<double>(points);
    rows[2 * i + 1] = 0;
  }
  spectral_portable.to_bins(plan, rows.data());
  for (std::size_t i = 0; i < points; ++i) {
    const double size = exponential(rows[2 * i]);
    const SineCosine angle = sine_cosine(rows[2 * i + 1]);
    rows[2 * i] = size * angle.cosine;
    rows[2 * i + 1] = size * angle.sine;
  }
}

}  // namespace

std::vector<double> bin_response(const std::vector<double>& taps, const FftPlan& plan,
                                 Phase phase) {
  const bool minimum = phase == Phase::kMinimum;
  // The cepstrum of a steep filter is many times as long as its taps: on the transform's own grid it
  // would fold back onto itself.
  constexpr std::size_t kCepstraPerTap = 11;
  std::size_t step = minimum ? 4 : 1;
  while (minimum && step * plan.points < kCepstraPerTap * taps.size()) step *= 2;
  const FftPlan finer = minimum ? make_fft_plan(step * plan.points) : FftPlan{};
  const FftPlan& grid = minimum ? finer : plan;
  const std::size_t points = grid.points;
  std::vector<double> rows(2 * points);
  for (std::size_t i = 0; i < taps.size(); ++i) {
    rows[2 * ((i + points - taps.size() / 2) % points)] = taps[i];
  }
  spectral_portable.to_bins(grid, rows.data());
  if (minimum) make_minimum_phase(grid, rows);
  std::vector<double> bins;
  for (std::size_t bin = 0; bin <= points / 2; bin += step) {
    const std::size_t place = grid.position(bin);
    bins.push_back(rows[2 * place]);
    bins.push_back(minimum ? rows[2 * place + 1] : 0.0);
  }
  return bins;
}

}  // namespace corvin::studio
