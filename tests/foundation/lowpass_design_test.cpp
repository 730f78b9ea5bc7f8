// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "foundation/lowpass_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace {

/// |H| at a frequency in units of the rate that the taps run at.
template <class Filter>
double Magnitude(const Filter& filter, double frequency) {
  std::complex<double> sum = 0;
  for (int i = 0; i <= filter.tapsPerPhase * filter.phases; ++i)
    sum += filter.coeffs[i] * std::polar(1.0, -2 * std::numbers::pi * frequency * i);
  return std::abs(sum);
}

TEST(LowpassDesign, DecoderLengthRules) {
  struct Row {
    int dsd_rate;
    double cutoff;
    int phases;
    int budget;
    double transition;
    int taps_per_phase;
  };
  // Lengths from the Kaiser estimate 82.05 / 14.36 / transition + 1, rounded up to odd by hand.
  const Row rows[] = {
      {2822400, 44100, 8, 65536, 2 * 44100.0 / 2822400, 185},
      {2822400, 22050, 8, 65536, 0.1, 59},
      {2822400, 24000, 8, 65536, 0.1, 59},
      {2822400, 352800, 8, 65536, 352800.0 / 2822400, 47},
      {2822400, 5512.5, 8, 65536, 11025.0 / 2822400, 1465},
      {2822400, 5512.5, 8, 4096, 11025.0 / 2822400, 513},  // the budget decides, made odd
  };
  for (const Row& row : rows) {
    CFIRFilter filter(row.budget);
    EXPECT_EQ(filter.Init(row.dsd_rate, row.dsd_rate, row.cutoff, row.phases, 90),
              (row.taps_per_phase + 1) * row.phases);
    EXPECT_EQ(filter.transition, row.transition);
    EXPECT_EQ(filter.tapsPerPhase, row.taps_per_phase);
    EXPECT_EQ(filter.DetectFilterLength(), row.taps_per_phase);
  }
}

TEST(LowpassDesign, DecoderPassesBelowAndStopsAbove) {
  CFIRFilter filter(65536);
  filter.Init(2822400, 2822400, 44100, 8, 90);
  const double pass = Magnitude(filter, 0);
  EXPECT_NEAR(pass, 8, 1);  // one per phase, but for what the window leaves out
  EXPECT_NEAR(Magnitude(filter, 0.5 * 44100 / 2822400) / pass, 1, 1e-3);
  EXPECT_NEAR(Magnitude(filter, 44100.0 / 2822400) / pass, 0.5, 0.01);
  for (double stop : {2.0, 2.5, 4.0, 10.0})
    EXPECT_LT(Magnitude(filter, stop * 44100 / 2822400) / pass, 1e-3) << stop;
}

TEST(LowpassDesign, WideDecoderBandsEndAtTheNoise) {
  const auto middle = [](int dsd_rate, double cutoff) {
    CFIRFilter filter(65536);
    filter.Init(dsd_rate, 2822400, cutoff, 8, 90);
    return filter.coeffs[filter.tapsPerPhase * 4];
  };
  EXPECT_EQ(middle(2822400, 88200), 2 * 43750.0 * 8 / 2822400);
  EXPECT_EQ(middle(2822400, 88199), 2 * 88199.0 * 8 / 2822400);
  EXPECT_EQ(middle(5644800, 176400), 2 * 87500.0 * 8 / 2822400);
  EXPECT_EQ(middle(5644800, 88200), 2 * 88200.0 * 8 / 2822400);
  EXPECT_EQ(middle(1411200, 88200), 2 * 43750.0 * 8 / 2822400);  // slower DSD counts as DSD64
}

// The window comes from factorials that wrap at 32 bits, and falls off far faster than a Kaiser
// window does: the levels of every conversion are tuned to it.
TEST(LowpassDesign, WindowUsesWrappedFactorials) {
  CFIRFilter filter(65536);
  filter.Init(2822400, 2822400, 44100, 8, 90);
  const int centre = filter.tapsPerPhase * 4;
  const int k = centre / 2 + 3;
  const double x = static_cast<double>(k) / centre;
  const double f = 44100.0 * 8 / 2822400;
  const double sinc = std::sin(2 * std::numbers::pi * f * k / 8) / (std::numbers::pi * k / 8);
  const double window = filter.coeffs[centre + k] / sinc;
  // The wrapped series is all but its last terms, of power 36 to 40: (1 - x^2)^18 to ^20.
  EXPECT_LT(window, std::pow(1 - x * x, 18));
  EXPECT_GT(window, std::pow(1 - x * x, 20) / 2);
  EXPECT_GT(std::cyl_bessel_i(0.0, 8.95926 * std::sqrt(1 - x * x)) / std::cyl_bessel_i(0.0, 8.95926),
            50 * window);
}

TEST(LowpassDesign, Encoder) {
  CFIRFilterEnc first, second;
  EXPECT_EQ(first.Init(2822400, 44100, 20000, 64, 30), (49 + 1) * 64);  // the budget: 3072 / 64 | 1
  second.Init(2822400, 44100, 20000, 64, 120);
  for (int i = 0; i <= first.tapsPerPhase * first.phases; ++i)
    ASSERT_EQ(first.coeffs[i], second.coeffs[i]);
  EXPECT_EQ(first.attenuation, 90);
  EXPECT_EQ(first.transition, 0.1);
  EXPECT_EQ(first.coeffs[49 * 32], 20000 * 0.125 * 64 / 44100);
  EXPECT_EQ(first.Init(2822400, 44100, 20000, 4, 0), (59 + 1) * 4);
  EXPECT_EQ(first.Init(2822400, 176400, 44100, 4, 0), (25 + 1) * 4);  // 5.7138 * 4 + 1, up to odd
  EXPECT_EQ(first.transition, 0.25);
}

TEST(LowpassDesign, CopiesScaledAndSymmetric) {
  CFIRFilter filter(64);
  filter.Init(2822400, 2822400, 100000, 2, 90);
  const int last = filter.tapsPerPhase * filter.phases;
  std::vector<float> out(static_cast<std::size_t>(last) + 2, 7.0f);
  filter.CreateCoeffs(out.data(), 3.0f);
  for (int i = 0; i <= last; ++i) {
    EXPECT_EQ(filter.coeffs[i], filter.coeffs[last - i]);
    EXPECT_EQ(out[static_cast<std::size_t>(i)], static_cast<float>(filter.coeffs[i] * 3.0));
  }
  EXPECT_EQ(out.back(), 7.0f);
}

TEST(LowpassDesign, AbsurdArguments) {
  CFIRFilter filter(65536);
  EXPECT_THROW(filter.Init(2822400, 2822400, 44100, 0, 90), std::invalid_argument);
  EXPECT_EQ(filter.Init(2822400, 2822400, 0, 8, 90), (8193 + 1) * 8);  // no width: the whole budget
  EXPECT_EQ(filter.Init(2822400, 0, 44100, 8, 90), (1 + 1) * 8);       // endless width: one tap
  EXPECT_EQ(filter.Init(0, 2822400, -44100, 8, 90), (1 + 1) * 8);
}

}  // namespace
