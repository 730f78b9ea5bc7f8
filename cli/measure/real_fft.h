// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The transform of real samples that spectra and shifts are found by.

#ifndef CORVIN_CLI_MEASURE_REAL_FFT_H_
#define CORVIN_CLI_MEASURE_REAL_FFT_H_

#include <complex>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace corvin::cli {

/** In doubles: what is rounded lies some 300 dB below full scale, under any noise worth a look. */
class RealFft {
 public:
  /** @param length  of the transform, a power of two from 4 on */
  explicit RealFft(size_t length);
  ~RealFft();
  RealFft(const RealFft&) = delete;
  RealFft& operator=(const RealFft&) = delete;

  size_t length() const { return 2 * (bins_.size() - 1); }

  /** The bins from 0 Hz to half the rate, length() / 2 + 1 of them, until the next call. */
  std::span<const std::complex<double>> run(std::span<const double> samples);

 private:
  struct Transform;
  std::unique_ptr<Transform> transform_;
  std::vector<std::complex<double>> bins_;
};

/** sum[lag] = a[0] * b[lag] + a[1] * b[lag + 1]..., for all places of `a` within `b`, which is the
 *  longer one. */
std::vector<double> correlation_of(std::span<const double> a, std::span<const double> b);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_REAL_FFT_H_
