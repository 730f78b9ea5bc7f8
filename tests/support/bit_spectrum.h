// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a bit stream holds in a band: a brick-wall decimation, a window and a Fourier transform, all
// in double and far quieter than any modulator.

#ifndef CORVIN_TESTS_SUPPORT_BIT_SPECTRUM_H_
#define CORVIN_TESTS_SUPPORT_BIT_SPECTRUM_H_

#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <utility>
#include <vector>

namespace corvin::testing {

/// Kaiser window over 2 x half + 1 points.
inline std::vector<double> kaiser(std::size_t half, double beta) {
  std::vector<double> window(2 * half + 1);
  for (std::size_t i = 0; i < window.size(); ++i) {
    const double x =
        (static_cast<double>(i) - static_cast<double>(half)) / static_cast<double>(half);
    const double argument = beta * std::sqrt(std::max(0.0, 1 - x * x));
    double term = 1, sum = 1;
    for (int k = 1; term > 1e-18 * sum; ++k) {
      term *= argument * argument / (4.0 * k * k);
      sum += term;
    }
    window[i] = sum;
  }
  return window;
}

/// Low-passes bits (earliest in the most significant place) and keeps one sample in `step`: flat up
/// to `band` and 190 dB down from `stop`, in parts of the bit rate. Sample n sees the bits
/// from n x step on; `step` is whole bytes.
inline std::vector<double> decimate(const std::vector<std::uint8_t>& bytes, std::size_t step,
                                    double band, double stop) {
  const double cutoff = (band + stop) / 2;
  const auto half = static_cast<std::size_t>(
      std::ceil((190 - 7.95) / (2.285 * 2 * std::numbers::pi * (stop - band)) / 2));
  std::vector<double> taps = kaiser(half, 0.1102 * (190 - 8.7));
  double sum = 0;
  for (std::size_t i = 0; i < taps.size(); ++i) {
    const double t = static_cast<double>(i) - static_cast<double>(half);
    const double angle = 2 * std::numbers::pi * cutoff * t;
    taps[i] *= t == 0 ? 1 : std::sin(angle) / angle;
    sum += taps[i];
  }
  for (double& tap : taps) tap /= sum;
  // What each byte makes with eight taps.
  std::vector<std::array<double, 256>> sums((taps.size() + 7) / 8);
  for (std::size_t i = 0; i < taps.size(); ++i) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      sums[i / 8][byte] += (byte >> (7 - i % 8) & 1) != 0 ? taps[i] : -taps[i];
    }
  }
  std::vector<double> out;
  for (std::size_t at = 0; at + sums.size() <= bytes.size(); at += step / 8) {
    double value = 0;
    for (std::size_t i = 0; i < sums.size(); ++i) value += sums[i][bytes[at + i]];
    out.push_back(value);
  }
  return out;
}

/// Radix 2, each pass in order from one array into another.
inline void transform(std::vector<std::complex<double>>& x) {
  std::vector<std::complex<double>> y(x.size());
  for (std::size_t half = x.size() / 2, stride = 1; half > 0; half /= 2, stride *= 2) {
    for (std::size_t p = 0; p < half; ++p) {
      const std::complex<double> turn =
          std::polar(1.0, -std::numbers::pi * static_cast<double>(p) / static_cast<double>(half));
      for (std::size_t q = 0; q < stride; ++q) {
        const std::complex<double> a = x[q + stride * p];
        const std::complex<double> b = x[q + stride * (p + half)];
        y[q + stride * 2 * p] = a + b;
        y[q + stride * (2 * p + 1)] = (a - b) * turn;
      }
    }
    std::swap(x, y);
  }
}

/// The band of a stream, all levels in dB re +-1.
class BitSpectrum {
 public:
  /// @param band_hz  the highest frequency looked at
  /// @param settle   bytes left out at the begin
  BitSpectrum(const std::vector<std::uint8_t>& bytes, double rate_hz, double band_hz,
              std::size_t settle = 1024)
      : band_hz_(band_hz) {
    std::size_t step = 32;
    while (rate_hz / static_cast<double>(2 * step) > 3.4 * band_hz) step *= 2;
    const std::vector<std::uint8_t> used(bytes.begin() + static_cast<std::ptrdiff_t>(settle),
                                         bytes.end());
    const std::vector<double> samples = decimate(
        used, step, band_hz / rate_hz, 1.0 / static_cast<double>(step) - band_hz / rate_hz);
    std::size_t size = 1;
    while (2 * size <= samples.size()) size *= 2;
    const std::vector<double> window = kaiser(size / 2, 26);
    std::vector<std::complex<double>> x(size);
    double sum = 0, energy = 0;
    for (std::size_t i = 0; i < size; ++i) {
      x[i] = samples[i] * window[i];
      sum += window[i];
      energy += window[i] * window[i];
    }
    transform(x);
    bin_hz_ = rate_hz / static_cast<double>(step) / static_cast<double>(size);
    for (std::size_t k = 0; k < size / 2; ++k) {
      powers_.push_back(2 * std::norm(x[k]) / (static_cast<double>(size) * energy));
      lines_.push_back(2 * std::abs(x[k]) / sum);
    }
  }

  /// Power of all between 20 Hz and the band's edge but for the sine at `tone_hz` (0: none).
  double noise(double tone_hz = 0) const {
    double total = 0;
    for (std::size_t k = first(); k <= last(); ++k) {
      if (!hidden(k, tone_hz)) total += powers_[k];
    }
    return 10 * std::log10(total);
  }

  /// Power of the sine at `tone_hz`.
  double tone(double tone_hz) const {
    double total = 0;
    for (std::size_t k = first(); k <= last(); ++k) {
      if (hidden(k, tone_hz)) total += powers_[k];
    }
    return 10 * std::log10(total);
  }

  double sndr(double tone_hz) const { return tone(tone_hz) - noise(tone_hz); }

  /// Amplitude of the strongest line but for the sine at `tone_hz`.
  double strongest_line(double tone_hz = 0) const {
    double most = 0;
    for (std::size_t k = first(); k <= last(); ++k) {
      if (!hidden(k, tone_hz)) most = std::max(most, lines_[k]);
    }
    return 20 * std::log10(most);
  }

 private:
  static constexpr double kLobe = 10;  // bins, one side

  std::size_t first() const { return static_cast<std::size_t>(std::ceil(20 / bin_hz_ + kLobe)); }
  std::size_t last() const { return static_cast<std::size_t>(band_hz_ / bin_hz_); }
  bool hidden(std::size_t k, double tone_hz) const {
    return tone_hz > 0 && std::abs(static_cast<double>(k) - tone_hz / bin_hz_) <= kLobe;
  }

  double band_hz_;
  double bin_hz_ = 0;
  std::vector<double> powers_;
  std::vector<double> lines_;
};

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_BIT_SPECTRUM_H_
