// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The frequency response of an encoder plan, summed from the taps and bins that its kernels use.

#ifndef CORVIN_TESTS_STUDIO_ENCODE_UP_RESPONSE_H_
#define CORVIN_TESTS_STUDIO_ENCODE_UP_RESPONSE_H_

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include "studio/kernels/spectral.h"
#include "studio/plan/encode_plan.h"

namespace corvin::studio {

class UpResponse {
 public:
  explicit UpResponse(const EncodePlan& plan)
      : plan_(plan),
        row_rate_(static_cast<double>(plan.config.pcm_rate) *
                  static_cast<double>(plan.shape.inverse.points) /
                  static_cast<double>(plan.shape.forward.points)) {
    const SpectralShape& shape = plan.shape;
    // What one frame at the start of a block makes: every bin of the input is 1. The product leaves
    // the parts exchanged for the inverse; conjugating does as well.
    const std::size_t points = shape.inverse.points;
    std::vector<double> rows(2 * points);
    for (std::size_t i = 0; i < points; ++i) {
      rows[2 * i] = shape.response[2 * i];
      rows[2 * i + 1] = -shape.response[2 * i + 1];
    }
    spectral_portable.from_bins(shape.inverse, rows.data());
    for (std::size_t i = 0; i < points; ++i) kernel_.push_back(rows[2 * i]);
  }

  /// Spectrum at `hz`, up to half the modulator's input rate and beyond, of what a single frame of
  /// 1.0 makes, as gain of a steady tone: 1 where a full-scale sine becomes 50 % modulation.
  std::complex<double> gain(double hz) const {
    return spectrum(kernel_, hz / row_rate_) * interpolation(hz) * 2.0 *
           static_cast<double>(plan_.config.pcm_rate) / row_rate_;
  }

  /// Largest deviation from 0 dB up to the pass edge, the modulator's own amplitude included;
  /// largest gain of anything from the stop edge on, where images go up and aliases come down;
  /// largest image that the modulator's own interpolation leaves above half its input rate.
  struct Figures {
    double ripple_db, image_db, own_image_db;
  };
  Figures figures() const {
    constexpr int kPassPoints = 300;
    constexpr int kStopPoints = 400;
    constexpr int kBandPoints = 24;
    Figures result = {0, -400, -400};
    const auto db = [](double gain) { return 20 * std::log10(std::max(gain, 1e-20)); };
    for (int i = 0; i <= kPassPoints; ++i) {
      const double hz = plan_.pass_hz * i / kPassPoints;
      result.ripple_db = std::max(result.ripple_db, std::fabs(db(std::abs(gain(hz)) * own(hz))));
    }
    // Up to half the transform's output rate its own skirt, denser near the edge; then the images
    // around every multiple of that rate.
    const double stop = plan_.stop_hz;
    const double nyquist = plan_.config.dsd_rate / 16.0;
    for (int i = 0; i <= kStopPoints; ++i) {
      const double part = static_cast<double>(i) / kStopPoints;
      const double hz = stop + (row_rate_ / 2 - stop) * part * part;
      result.image_db = std::max(result.image_db, db(std::abs(gain(hz))));
    }
    for (std::size_t k = 1; k <= plan_.factor() / 2; ++k) {
      for (int i = -kBandPoints; i <= kBandPoints; ++i) {
        const double hz = static_cast<double>(k) * row_rate_ + stop * i / kBandPoints;
        if (hz > nyquist) continue;
        result.image_db = std::max(result.image_db, db(std::abs(gain(hz))));
      }
    }
    for (int i = 0; i <= kStopPoints; ++i) {
      const double hz = stop + (plan_.config.pcm_rate / 2.0 - stop) * i / kStopPoints;
      if (hz > stop) result.image_db = std::max(result.image_db, db(alias(hz)));
    }
    for (int k = 1; k <= 4; ++k) {
      for (int i = -kBandPoints; i <= kBandPoints; ++i) {
        const double hz = k * 2 * nyquist + plan_.pass_hz * i / kBandPoints;
        if (hz < 8 * nyquist) result.own_image_db = std::max(result.own_image_db, db(own(hz)));
      }
    }
    return result;
  }

 private:
  double own(double hz) const {
    return std::fabs(plan_.config.response(8 * hz / plan_.config.dsd_rate));
  }

  // Gain of the steep filter for a sine at `hz` of the PCM stream, wherever it ends up.
  double alias(double hz) const {
    const SpectralShape& shape = plan_.shape;
    const std::size_t points = shape.forward.points;
    if (alias_kernel_.empty()) {
      std::vector<double> bins(2 * points);
      for (std::size_t place = 0; place < shape.inverse.points; ++place) {
        if (shape.response[2 * place] == 0 && shape.response[2 * place + 1] == 0) continue;
        bins[2 * shape.source[place]] = shape.response[2 * place];
        bins[2 * shape.source[place] + 1] = -shape.response[2 * place + 1];
      }
      spectral_portable.from_bins(shape.forward, bins.data());
      for (std::size_t i = 0; i < points; ++i) alias_kernel_.push_back(bins[2 * i]);
    }
    return 2 * std::abs(spectrum(alias_kernel_, hz / plan_.config.pcm_rate));
  }

  // Spectrum at a frequency in parts of the rate of a kernel that lies around place 0 of a circle.
  // Unrolled there, only its phase would change.
  static std::complex<double> spectrum(const std::vector<double>& kernel, double frequency) {
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

  // Spectrum of the zero-stuffed rows' filter.
  std::complex<double> interpolation(double hz) const {
    const double rate = row_rate_ * static_cast<double>(plan_.factor());
    std::complex<double> sum = 0.0;
    for (std::size_t t = 0; t < plan_.depth; ++t) {
      for (std::size_t d = 0; d < plan_.factor(); ++d) {
        const auto at = static_cast<double>(d + (plan_.depth - 1 - t) * plan_.factor());
        sum += plan_.taps[t * plan_.factor() + d] * std::polar(1.0, -2 * M_PI * hz / rate * at);
      }
    }
    return sum / static_cast<double>(plan_.factor());
  }

  const EncodePlan& plan_;
  double row_rate_;
  std::vector<double> kernel_;
  mutable std::vector<double> alias_kernel_;
};

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_STUDIO_ENCODE_UP_RESPONSE_H_
