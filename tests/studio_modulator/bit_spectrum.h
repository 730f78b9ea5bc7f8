// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a bit stream holds in a band: a brick-wall decimation, a window and a Fourier transform, all
// in double and far quieter than any modulator.

#ifndef CORVIN_TESTS_STUDIO_MODULATOR_BIT_SPECTRUM_H_
#define CORVIN_TESTS_STUDIO_MODULATOR_BIT_SPECTRUM_H_

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
    for (int k = 1; k < 120; ++k) {
      term *= argument * argument / (4.0 * k * k);
      sum += term;
    }
    window[i] = sum;
  }
  return window;
}

/// Low-passes bits (earliest in the most significant place) and keeps one sample in `step`: flat up
/// to `band` and 190 dB down from `stop`, in parts of the bit rate. Sample n lies on bit n x step +
/// the first element.
inline std::pair<std::size_t, std::vector<double>> decimate(const std::vector<std::uint8_t>& bytes,
                                                            std::size_t step, double band,
                                                            double stop) {
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
  std::vector<double> bits(bytes.size() * 8);
  for (std::size_t i = 0; i < bits.size(); ++i) {
    bits[i] = (bytes[i / 8] >> (7 - i % 8) & 1) != 0 ? 1.0 : -1.0;
  }
  std::vector<double> out;
  out.reserve(bits.size() / step);
  for (std::size_t at = 0; at + taps.size() <= bits.size(); at += step) {
    double value[4] = {};
    std::size_t i = 0;
    for (; i + 4 <= taps.size(); i += 4) {
      for (std::size_t lane = 0; lane < 4; ++lane)
        value[lane] += taps[i + lane] * bits[at + i + lane];
    }
    for (; i < taps.size(); ++i) value[0] += taps[i] * bits[at + i];
    out.push_back(value[0] + value[1] + value[2] + value[3]);
  }
  return {half, out};
}

/// In place, radix 2.
inline void transform(std::vector<std::complex<double>>& x) {
  const std::size_t size = x.size();
  for (std::size_t i = 1, j = 0; i < size; ++i) {
    std::size_t bit = size >> 1;
    for (; (j & bit) != 0; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) std::swap(x[i], x[j]);
  }
  std::vector<std::complex<double>> turns(size / 2);
  for (std::size_t i = 0; i < size / 2; ++i) {
    turns[i] =
        std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size));
  }
  for (std::size_t span = 1; span < size; span *= 2) {
    for (std::size_t start = 0; start < size; start += 2 * span) {
      for (std::size_t i = 0; i < span; ++i) {
        const std::complex<double> a = x[start + i];
        const std::complex<double> b = x[start + span + i];
        const std::complex<double> w = turns[i * (size / 2 / span)];
        const std::complex<double> turned(b.real() * w.real() - b.imag() * w.imag(),
                                          b.real() * w.imag() + b.imag() * w.real());
        x[start + i] = a + turned;
        x[start + span + i] = a - turned;
      }
    }
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
    const std::vector<double> samples =
        decimate(used, step, band_hz / rate_hz, 1.0 / static_cast<double>(step) - band_hz / rate_hz)
            .second;
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

  double bin_hz() const { return bin_hz_; }

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

#endif  // CORVIN_TESTS_STUDIO_MODULATOR_BIT_SPECTRUM_H_
