// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The frequency response of an encoder plan, summed from the taps and bins that its kernels use.

#ifndef CORVIN_TESTS_SUPPORT_UP_RESPONSE_H_
#define CORVIN_TESTS_SUPPORT_UP_RESPONSE_H_

#include "studio/plan/encode_plan.h"
#include "tests/support/filter_response.h"

namespace corvin::studio {

class UpResponse {
 public:
  explicit UpResponse(const EncodePlan& plan)
      : plan_(plan),
        row_rate_(static_cast<double>(plan.config.pcm_rate) *
                  static_cast<double>(plan.shape.inverse.points) /
                  static_cast<double>(plan.shape.forward.points)),
        alias_kernel_(input_kernel(plan.shape)) {
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
    const double stop = plan_.config.stop_hz;
    const double nyquist = plan_.config.dsd_rate / 16.0;
    Figures result;
    result.ripple_db = largest(0, kPassPoints, [&](int i) {
      const double hz = plan_.config.pass_hz * i / kPassPoints;
      return std::fabs(to_db(gain(hz) * own(hz)));
    });
    // Up to half the transform's output rate its own skirt, denser near the edge; then the images
    // around every multiple of that rate.
    const double skirt_db = largest(0, kStopPoints, [&](int i) {
      const double part = static_cast<double>(i) / kStopPoints;
      return to_db(gain(stop + (row_rate_ / 2 - stop) * part * part));
    });
    const double image_db = largest(1, static_cast<int>(plan_.factor() / 2), [&](int k) {
      return largest(-kBandPoints, kBandPoints, [&](int i) {
        const double hz = k * row_rate_ + stop * i / kBandPoints;
        return hz > nyquist ? -400 : to_db(gain(hz));
      });
    });
    const double alias_db = largest(0, kStopPoints, [&](int i) {
      const double hz = stop + (plan_.config.pcm_rate / 2.0 - stop) * i / kStopPoints;
      return hz > stop ? to_db(alias(hz)) : -400;
    });
    result.image_db = std::max({skirt_db, image_db, alias_db});
    result.own_image_db = largest(1, 4, [&](int k) {
      return largest(-kBandPoints, kBandPoints, [&](int i) {
        const double hz = k * 2 * nyquist + plan_.config.pass_hz * i / kBandPoints;
        return hz < 8 * nyquist ? to_db(own(hz)) : -400;
      });
    });
    return result;
  }

 private:
  // Size at `hz`, up to half the modulator's input rate and beyond, of what a single frame of 1.0
  // makes, as gain of a steady tone: 1 where a full-scale sine becomes 50 % modulation.
  double gain(double hz) const {
    return std::abs(spectrum(kernel_, hz / row_rate_) * interpolation(hz)) * 2 *
           plan_.config.pcm_rate / row_rate_;
  }

  double own(double hz) const { return plan_.config.response(8 * hz / plan_.config.dsd_rate); }

  // Gain of the steep filter for a sine at `hz` of the PCM stream, wherever it ends up.
  double alias(double hz) const {
    return 2 * std::abs(spectrum(alias_kernel_, hz / plan_.config.pcm_rate));
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
  std::vector<double> alias_kernel_;
  std::vector<double> kernel_;
};

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_UP_RESPONSE_H_
