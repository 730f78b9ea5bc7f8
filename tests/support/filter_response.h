// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The steep filter as a transform's bins describe it: its kernel and its spectrum.

#ifndef CORVIN_TESTS_SUPPORT_FILTER_RESPONSE_H_
#define CORVIN_TESTS_SUPPORT_FILTER_RESPONSE_H_

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <vector>

#include "studio/kernels/spectral.h"

namespace corvin::studio {

inline double to_db(double gain) { return 20 * std::log10(std::max(std::fabs(gain), 1e-20)); }

/// The largest of value(first), value(first + 1) ... value(last).
template <typename Value>
double largest(int first, int last, Value value) {
  double most = -400;
  for (int i = first; i <= last; ++i) most = std::max(most, value(i));
  return most;
}

/// The kernel around place 0 of the circle of the forward transform's points.
inline std::vector<double> input_kernel(const SpectralShape& shape) {
  std::vector<double> bins(2 * shape.forward.points);
  for (std::size_t place = 0; place < shape.inverse.points; ++place) {
    const std::size_t at = shape.source[place];
    if (shape.response[2 * place] == 0 && shape.response[2 * place + 1] == 0) continue;
    // Conjugated, so that the forward transform below inverts.
    bins[2 * at] = shape.response[2 * place];
    bins[2 * at + 1] = -shape.response[2 * place + 1];
  }
  spectral_portable.from_bins(shape.forward, bins.data());
  std::vector<double> kernel;
  for (std::size_t i = 0; i < shape.forward.points; ++i) kernel.push_back(bins[2 * i]);
  return kernel;
}

/// Spectrum of a kernel around place 0 of a circle at a frequency in parts of its rate. Unrolled
/// there, only the phase would change.
inline std::complex<double> spectrum(const std::vector<double>& kernel, double frequency) {
  const std::size_t points = kernel.size();
  const std::complex<double> step = std::polar(1.0, -2 * M_PI * frequency);
  std::complex<double> turn;
  std::complex<double> sum = 0.0;
  for (std::size_t i = 0; i < points; ++i, turn *= step) {
    const double row = static_cast<double>(i) - static_cast<double>(points / 2);
    if (i % 64 == 0) turn = std::polar(1.0, -2 * M_PI * frequency * row);
    sum += kernel[(i + points - points / 2) % points] * turn;
  }
  return sum;
}

/// The kernel of a linear-phase filter as a continuous function of the time in inputs.
inline double kernel_at(const SpectralShape& shape, double inputs) {
  double sum = 0;
  const std::size_t bins = std::min(shape.forward.points, shape.inverse.points) / 2;
  for (std::size_t bin = 0; bin < bins; ++bin) {
    const std::size_t place = shape.inverse.position(bin);
    // Up to the stop edge the response is positive: its size is all there is to it.
    const double size = std::hypot(shape.response[2 * place], shape.response[2 * place + 1]);
    const double angle =
        2 * M_PI * static_cast<double>(bin) * inputs / static_cast<double>(shape.forward.points);
    sum += (bin == 0 ? 1 : 2) * size * std::cos(angle);
  }
  return sum;
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_FILTER_RESPONSE_H_
