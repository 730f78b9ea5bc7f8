// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "classic/encode/modulator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "tests/support/dsd_analysis.h"

namespace {

using corvin::testing::Bits;

constexpr double kPi = std::numbers::pi;

Bits Bitstream(const std::vector<float>& in, int interpolation) {
  double state[8] = {};
  std::vector<char> bytes(in.size() / 8);
  Modulate(in.data(), static_cast<int>(bytes.size()), DesignModulator(interpolation), state, false,
           1, bytes.data());
  Bits bits;
  for (const char byte : bytes)
    for (int i = 0; i < 8; ++i) bits.push_back(byte >> (7 - i) & 1 ? 1 : -1);
  return bits;
}

// The error reaches the output through (D(z) - sum A z^-k) / D(z): its zeros and poles are looked
// up on the design, not on the way it was computed.
TEST(Modulator, ShapesNoiseWithTheStatedZerosAndPoles) {
  for (const int interpolation : {512, 64, 1}) {
    const ModulatorCoefficients c = DesignModulator(interpolation);
    const auto numerator = [&](std::complex<double> z) {
      std::complex<double> sum = 1;
      for (int i = 0; i < 8; ++i) sum -= (c.a[i] + c.b[i]) * std::pow(z, -(i + 1));
      return sum;
    };
    const double theta = kPi / (interpolation == 1 ? 64 : interpolation);
    for (const double place : {0.0, 0.42, 0.74, 0.95})
      EXPECT_LT(std::abs(numerator(std::polar(1.0, place * theta))), 1e-13) << interpolation;
    EXPECT_GT(std::abs(numerator(std::polar(1.0, kPi))), 100);
    std::complex<double> denominator = 1;
    for (int i = 0; i < 8; ++i) denominator -= c.b[i] * std::pow(0.85, -(i + 1));
    EXPECT_LT(std::abs(denominator), 1e-10);
    EXPECT_EQ(c.a[7], 0);
    EXPECT_EQ(c.b[7], 0);
  }
}

/// The recursion as it is defined, sums in index order. It agrees with the fast one for as long as
/// rounding has not tipped a decision: far longer than any slip in a coefficient, the clamp or the
/// state would.
TEST(Modulator, FollowsItsDefinition) {
  const auto [a, b] = DesignModulator(64);
  std::vector<float> in(400);
  for (std::size_t i = 0; i < in.size(); ++i)
    in[i] = static_cast<float>(i / 40 == 3 ? 5.0 : 0.4 * std::sin(0.01 * static_cast<double>(i)));
  double x[8] = {};
  Bits expected;
  for (const float u : in) {
    double f = 0, g = 0;
    for (int k = 0; k < 8; ++k) {
      f += a[k] * x[k];
      g += b[k] * x[k];
    }
    const double v = std::clamp(u + f, -2.0, 2.0);
    const double q = v >= 0 ? 1 : -1;
    for (int k = 7; k > 0; --k) x[k] = x[k - 1];
    x[0] = v - q + g;
    expected.push_back(static_cast<std::int8_t>(q));
  }
  EXPECT_EQ(Bitstream(in, 64), expected);
}

TEST(Modulator, PacksInBothOrdersByTheSignBit) {
  double state[8] = {};
  // Feedback of nothing but negative zeros: the bits are the signs, +0 is a one and -0 a zero.
  ModulatorCoefficients none;
  std::fill_n(none.a, 8, -0.0);
  std::fill_n(none.b, 8, 1.0);  // v - q + g = 0 keeps the state at zero for v = q
  const float in[8] = {1.0f, -1.0f, -1.0f, 1.0f, -1.0f, -1.0f, -1.0f, -0.0f};
  char bytes[2] = {};
  Modulate(in, 1, none, state, false, 1, bytes);
  std::fill_n(state, 8, 0.0);
  Modulate(in, 1, none, state, true, 1, bytes + 1);
  EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0x90);
  EXPECT_EQ(static_cast<unsigned char>(bytes[1]), 0x09);
}

TEST(Modulator, OverloadHoldsAndComesBack) {
  constexpr double kRate = 2822400;
  std::vector<float> in(8 * 50000);
  for (std::size_t i = 0; i < in.size(); ++i)
    in[i] =
        i < in.size() / 4
            ? 3.0f
            : static_cast<float>(0.25 * std::sin(2 * kPi * 1000 * static_cast<double>(i) / kRate));
  const Bits bits = Bitstream(in, 512);
  // Beyond what it can follow it says so with ones.
  for (std::size_t i = 1000; i < in.size() / 4; ++i) ASSERT_EQ(bits[i], 1);
  // Ten milliseconds later it follows the sine as if nothing had been.
  const Bits after(bits.begin() + static_cast<long>(in.size() / 4 + 28224), bits.end());
  const auto fit = corvin::testing::FitSine(corvin::testing::LowPass(after, kRate), 1000);
  EXPECT_NEAR(fit.amplitude, 0.25, 1e-5);
  EXPECT_LT(fit.residual, 1e-5);
}

TEST(Modulator, PackingFunctionsCompareWithZero) {
  float p[8] = {1.0f, 0.0f, -0.0f, -1.0f, 1e-30f, 2.0f, -2.0f, 3.0f};
  EXPECT_EQ(bits_sse_l(p), 0b10110001);
  EXPECT_EQ(bits_sse_b(p), 0b10001101);
}

}  // namespace
