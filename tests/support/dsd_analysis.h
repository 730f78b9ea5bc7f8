// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a bit stream says below 20 kHz: a long brick-wall filter in double precision, and the sine
// in its output.

#ifndef CORVIN_TESTS_SUPPORT_DSD_ANALYSIS_H_
#define CORVIN_TESTS_SUPPORT_DSD_ANALYSIS_H_

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

#include "tests/support/dsd_signals.h"

namespace corvin::testing {

/// Low-passes at 20 kHz with a Blackman-windowed sinc whose stop band begins at 24 kHz, and keeps
/// one sample in `step`. Sample n belongs to the time of bit n * step; a margin at both ends is
/// left out, `first` samples at the start.
struct BandLimited {
  std::vector<double> samples;
  std::size_t first = 0;
  double rate_hz = 0;
};

inline BandLimited LowPass(const Bits& bits, double rate_hz) {
  const auto step = static_cast<std::size_t>(rate_hz / 88200);
  const double cutoff = 22000 / rate_hz;
  const auto half = static_cast<std::size_t>(2.75 * rate_hz / 4000);
  std::vector<double> taps(2 * half + 1);
  double sum = 0;
  for (std::size_t i = 0; i < taps.size(); ++i) {
    const double t = static_cast<double>(i) - static_cast<double>(half);
    const double x = static_cast<double>(i) / static_cast<double>(2 * half) * 2 * std::numbers::pi;
    const double window = 0.42 - 0.5 * std::cos(x) + 0.08 * std::cos(2 * x);
    const double a = 2 * std::numbers::pi * cutoff * t;
    taps[i] = window * (t == 0 ? 1 : std::sin(a) / a);
    sum += taps[i];
  }
  BandLimited out;
  out.rate_hz = rate_hz / static_cast<double>(step);
  out.first = (half + step - 1) / step;
  for (std::size_t at = out.first * step; at + half < bits.size(); at += step) {
    double value = 0;
    for (std::size_t i = 0; i < taps.size(); ++i) value += bits[at - half + i] * taps[i];
    out.samples.push_back(value / sum);
  }
  return out;
}

/// The sine of a known frequency in a signal, by least squares over whole periods where it can, and
/// what is left without it and the mean.
struct Sine {
  double amplitude = 0;
  double delay_s = 0;  ///< behind sin(2 pi f t), t = 0 at the first bit; within half a period
  double mean = 0;
  double residual = 0;  ///< root mean square
};

inline Sine FitSine(const BandLimited& signal, double frequency_hz) {
  const double period = signal.rate_hz / frequency_hz;
  const auto count = static_cast<std::size_t>(
      std::floor(std::floor(static_cast<double>(signal.samples.size()) / period) * period));
  const double omega = 2 * std::numbers::pi * frequency_hz / signal.rate_hz;
  // Normal equations of {cos, sin, 1}.
  double m[3][4] = {};
  for (std::size_t i = 0; i < count; ++i) {
    const double angle = omega * static_cast<double>(i + signal.first);
    const double row[3] = {std::cos(angle), std::sin(angle), 1};
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) m[r][c] += row[r] * row[c];
      m[r][3] += row[r] * signal.samples[i];
    }
  }
  for (int r = 0; r < 3; ++r)
    for (int other = 0; other < 3; ++other) {
      if (other == r) continue;
      const double factor = m[other][r] / m[r][r];
      for (int c = 0; c < 4; ++c) m[other][c] -= factor * m[r][c];
    }
  const double cosine = m[0][3] / m[0][0], sine = m[1][3] / m[1][1];
  Sine out;
  out.mean = m[2][3] / m[2][2];
  out.amplitude = std::hypot(cosine, sine);
  out.delay_s = std::atan2(-cosine, sine) / (2 * std::numbers::pi * frequency_hz);
  double power = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double angle = omega * static_cast<double>(i + signal.first);
    const double rest =
        signal.samples[i] - cosine * std::cos(angle) - sine * std::sin(angle) - out.mean;
    power += rest * rest;
  }
  out.residual = std::sqrt(power / static_cast<double>(count));
  return out;
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_DSD_ANALYSIS_H_
