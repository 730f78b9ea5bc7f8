// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the classic PCM to DSD filter does to a sine, from the figures that its plans are published
// with.

#ifndef CORVIN_TESTS_SUPPORT_ENCODE_MODEL_H_
#define CORVIN_TESTS_SUPPORT_ENCODE_MODEL_H_

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <ostream>

namespace corvin::testing {

struct EncodePair {
  int pcm_rate;
  int dsd_rate;
  int l;         ///< interpolation
  int m;         ///< decimation
  double level;  ///< level factor
};

inline void PrintTo(const EncodePair& pair, std::ostream* out) {
  *out << pair.pcm_rate << " to " << pair.dsd_rate;
}

/// Modulation depth that a sine of full scale at `frequency_hz` comes out at.
inline double FullScaleDepth(const EncodePair& pair, double frequency_hz) {
  const double width = pair.pcm_rate / 2.0 > 24000 ? 0.5 / pair.l : 0.1;
  const int phases = 8 * pair.l;
  const int budget = 3072 / phases | 1;
  const int length = static_cast<int>(std::ceil(82.05 / 14.36 / width + 1)) | 1;
  const int taps = std::min(budget, length) * phases;
  const int centre = taps / 2;
  // The window: the Bessel series of 90 dB with 32-bit factorials, wrapped from 13! on.
  static constexpr double kFactorials[] = {
      1,          2,          6,          24,         120,       720,        5040,
      40320,      362880,     3628800,    39916800,   479001600, 1932053504, 1278945280,
      2004310016, 2004189184, -288522240, -898433024, 109641728, -2102132736};
  const auto bessel = [](double half) {
    double sum = 1, power = 1;
    for (double factorial : kFactorials) {
      power *= half;
      sum += power / factorial * (power / factorial);
    }
    return sum;
  };
  const double half_beta = 0.1102 * (90 - 8.7) / 2;
  std::complex<double> response = 0;
  for (int k = -centre; k <= centre; ++k) {
    const double x = static_cast<double>(k) / centre;
    const double window = bessel(half_beta * std::sqrt(1 - x * x)) / bessel(half_beta);
    const double t = std::numbers::pi * k / phases;
    const double sinc = k == 0 ? 0.5 : std::sin(0.5 * t) / t;
    response += sinc * window *
                std::polar(1.0, 2 * std::numbers::pi * frequency_hz * k /
                                    (static_cast<double>(pair.l) * pair.pcm_rate));
  }
  // Samples enter the filter at half of full scale.
  return 0.5 * std::abs(response) * pair.level / pair.l;
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_ENCODE_MODEL_H_
