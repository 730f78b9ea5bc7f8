// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A slow double-precision model of DSD to PCM: one Kaiser-windowed sinc, evaluated where an output
// sample needs it. No polyphase sets, no schedule, no blocks but for where the stream ends.

#ifndef CORVIN_TESTS_SUPPORT_DECODE_MODEL_H_
#define CORVIN_TESTS_SUPPORT_DECODE_MODEL_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <ostream>
#include <vector>

#include "tests/support/dsd_signals.h"

namespace corvin::testing {

/// A pair of rates with the numbers that its filter is published with.
struct DecodePair {
  int dsd_rate;
  int pcm_rate;
  int l;        ///< interpolation
  int m;        ///< decimation
  double trim;  ///< level trim; 0 for a pair without a plan, which has no level correction
  int tap_budget;
  int block = 4096;  ///< input samples in a block: decides where a stream that ends early ends
};

/// What the test runner calls a pair.
inline void PrintTo(const DecodePair& pair, std::ostream* out) {
  *out << pair.dsd_rate << " to " << pair.pcm_rate;
}

inline int OddUp(double value) { return static_cast<int>(value) | 1; }

class DecodeModel {
 public:
  explicit DecodeModel(const DecodePair& pair) : pair_(pair) {
    const bool planned = pair.trim != 0;
    // Across families without a plan, the filter is designed for dsd_rate / pcm_rate phases.
    const int design = planned || pair.m != 1 ? pair.l : pair.dsd_rate / pair.pcm_rate;
    phases_ = 8 * design;
    const double rate = static_cast<double>(design) * pair.dsd_rate;
    double edge = pair.pcm_rate / 2.0;
    double width = edge >= 352800 ? edge / rate : 2 * edge / rate;
    if (edge == 22050 || edge == 24000) width = 0.1;
    const int length = OddUp(std::ceil((90 - 7.95) / 14.36 / width + 1));
    const int budget = pair.tap_budget / phases_ | 1;
    per_phase_ = std::min(length, budget);
    taps_ = (per_phase_ + 1) * phases_;
    const int multiple = std::max(1, pair.dsd_rate / 2822400);
    if (edge >= 88200.0 * multiple) edge = std::min(edge, 43750.0 * multiple);
    frequency_ = edge * phases_ / rate;
    gain_ = design;
    if (planned) {
      gain_ *= 2.0 / (8.0 * design) * pair.trim;
      if (pair.dsd_rate >= 5644800 && pair.pcm_rate < 88200) gain_ *= pair.dsd_rate / 3763200.0;
    }
    scale_ = Bessel(kBeta / 2);
    centre_ = per_phase_ * phases_ / 2;
    h_.resize(static_cast<std::size_t>(taps_) + 1);
    for (int i = 0; i <= 2 * centre_; ++i)
      h_[static_cast<std::size_t>(i)] = gain_ * Tap(i - centre_);
  }

  int skip() const { return static_cast<int>(std::lround(taps_ * 0.5 / pair_.m)); }

  /// Taps that one output sample sees.
  int window() const { return taps_ / pair_.l; }

  /// Sum of |tap| that one output sample sees, at most.
  double absolute_sum() const {
    double worst = 0;
    for (int phase = 0; phase < pair_.l; ++phase) {
      double sum = 0;
      for (int i = phase; i <= taps_; i += pair_.l)
        sum += std::abs(h_[static_cast<std::size_t>(i)]);
      worst = std::max(worst, sum);
    }
    return worst;
  }

  /// Every output sample before clipping, full scale 1.0. `bits` is a whole number of bytes;
  /// `total_bits` is the length that the file states.
  std::vector<double> Run(const Bits& bits, std::uint64_t total_bits) const {
    const auto limit =
        static_cast<std::int64_t>(total_bits / static_cast<std::uint64_t>(pair_.dsd_rate) *
                                      static_cast<std::uint64_t>(pair_.pcm_rate) +
                                  total_bits % static_cast<std::uint64_t>(pair_.dsd_rate) *
                                      static_cast<std::uint64_t>(pair_.pcm_rate) /
                                      static_cast<std::uint64_t>(pair_.dsd_rate));
    const auto flushed =
        static_cast<std::int64_t>(bits.size()) + 8 * std::lround(window() * 0.0625);
    const std::int64_t end = (flushed + pair_.block - 1) / pair_.block * pair_.block;
    std::vector<double> out;
    for (std::int64_t n = skip(); static_cast<std::int64_t>(out.size()) < limit; ++n) {
      // Position in units of 1 / L samples. Without a plan the grid is rounded down to the input's.
      const std::int64_t at = pair_.trim != 0 ? n * pair_.m : n * pair_.dsd_rate / pair_.pcm_rate;
      if (at / pair_.l >= end) break;
      out.push_back(At(bits, at));
    }
    return out;
  }

 private:
  static constexpr double kBeta = 0.1102 * (90 - 8.7);

  /// The series with the factorials that a 32-bit product gives from 13! on.
  static double Bessel(double half) {
    static constexpr double kFactorials[] = {
        1,          2,          6,          24,         120,       720,        5040,
        40320,      362880,     3628800,    39916800,   479001600, 1932053504, 1278945280,
        2004310016, 2004189184, -288522240, -898433024, 109641728, -2102132736};
    double sum = 1, power = 1;
    for (double factorial : kFactorials) {
      power *= half;
      sum += power / factorial * (power / factorial);
    }
    return sum;
  }

  double Tap(int k) const {
    if (k == 0) return 2 * frequency_;
    const double x = static_cast<double>(k) / centre_;
    const double t = static_cast<double>(k) / phases_;
    return std::sin(2 * std::numbers::pi * frequency_ * t) / (std::numbers::pi * t) *
           Bessel(kBeta / 2 * std::sqrt(1 - x * x)) / scale_;
  }

  double At(const Bits& bits, std::int64_t at) const {
    const std::int64_t l = pair_.l;
    const std::int64_t shift = l * window() - at;
    const std::int64_t first = shift >= 0 ? 0 : (l - 1 - shift) / l;
    double sum = 0;
    for (std::int64_t j = first; j * l + shift <= taps_; ++j) {
      static constexpr int kSilence[] = {-1, 1, 1, -1, 1, -1, -1, 1};
      const auto index = static_cast<std::size_t>(j);
      const int bit = index < bits.size() ? bits[index]
                      : lsb_first_        ? kSilence[7 - index % 8]
                                          : kSilence[index % 8];
      sum += bit * h_[static_cast<std::size_t>(j * l + shift)];
    }
    return sum;
  }

 public:
  /// Bit order of the silence behind the data.
  void set_lsb_first(bool lsb_first) { lsb_first_ = lsb_first; }

 private:
  DecodePair pair_;
  bool lsb_first_ = false;
  int phases_ = 0;
  int per_phase_ = 0;
  int taps_ = 0;
  int centre_ = 0;
  double frequency_ = 0;
  double gain_ = 0;
  double scale_ = 0;
  std::vector<double> h_;
};

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_DECODE_MODEL_H_
