// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The coefficients: from their generator, and as transfer functions.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <fstream>
#include <memory>
#include <numbers>
#include <sstream>
#include <string>

#include "studio/modulator/noise_shapers.h"
#include "studio/modulator/reference_loop.h"

namespace corvin::studio {
namespace {

TEST(NoiseShapers, TheCommittedWeightsAreTheGeneratorsOwn) {
  if (std::system("python3 -c 1") != 0) GTEST_SKIP() << "no python3";
  const std::string source = CORVIN_SOURCE_DIR;
  const std::string command = "python3 '" + source + "/tools/design_noise_shapers.py'";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  ASSERT_NE(pipe, nullptr);
  std::string written;
  std::array<char, 4096> buffer;
  while (std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
    written.append(buffer.data(), count);
  }
  std::ostringstream committed;
  committed << std::ifstream(source + "/studio/modulator/noise_shaper_weights.inc").rdbuf();
  EXPECT_EQ(written, committed.str());
}

// First and last weights of the shifted loops as an independent solver printed them.
TEST(NoiseShapers, WeightsAgreeWithAnIndependentSolution) {
  const NoiseShaper& high = noise_shaper(ModulatorGrade::kHigh, 64);
  const NoiseShaper& best = noise_shaper(ModulatorGrade::kBest, 64);
  EXPECT_NEAR(high.c[0] / 0x1.66070352304e5p-1, 1, 1e-12);
  EXPECT_NEAR(high.c[9] / -0x1.9f375c49d9ed5p-35, 1, 1e-10);
  EXPECT_NEAR(best.c[0] / 0x1.6f3a00f706a51p-1, 1, 1e-12);
  EXPECT_NEAR(best.c[9] / -0x1.192f70903abf6p-34, 1, 1e-10);
}

// Gain from the quantiser's error to the bits: 1 / (1 + L), L from u - v to y - u.
double noise_gain_db(const NoiseShaper& shaper, double frequency) {
  const std::complex<double> d = std::polar(1.0, 2 * std::numbers::pi * frequency) - 1.0;
  std::complex<double> drive = 1, answer = 0;
  for (int k = 0; k < shaper.order / 2; ++k) {
    // d a = in - g b; d b = (1 + d) a, since b takes the new a.
    const std::complex<double> a = drive / (d + shaper.g[k] * (1.0 + d) / d);
    const std::complex<double> b = a * (1.0 + d) / d;
    answer += shaper.c[2 * k] * a + shaper.c[2 * k + 1] * b;
    drive = b;
  }
  return -20 * std::log10(std::abs(1.0 + answer));
}

TEST(NoiseShapers, TheNoiseIsWhereItShouldBe) {
  const NoiseShaper& standard = noise_shaper(ModulatorGrade::kStandard, 64);
  const struct {
    double frequency_hz, gain_db;
  } kPoints[] = {{10000, -130}, {18000, -124}, {20000, -111}, {22000, -83},   {24000, -66},
                 {30000, -28},  {50000, -8.8}, {100000, -9},  {200000, -1.7}, {500000, 3.4}};
  for (const auto& point : kPoints) {
    EXPECT_NEAR(noise_gain_db(standard, point.frequency_hz / 2822400), point.gain_db, 1)
        << point.frequency_hz;
  }
  // Between the last zeros and the edge of the band, 50 kHz.
  EXPECT_LT(noise_gain_db(noise_shaper(ModulatorGrade::kStandard, 256), 45000 / 11289600.0), -128);
  EXPECT_LT(noise_gain_db(noise_shaper(ModulatorGrade::kStandard, 512), 45000 / 22579200.0), -143);
}

TEST(NoiseShapers, TheReferenceLoopKeepsItsSignalAndItsLock) {
  ReferenceLoop loop(noise_shaper(ModulatorGrade::kStandard, 64));
  double sum = 0;
  constexpr int kBits = 100000;
  for (int i = 0; i < kBits; ++i) {
    sum += loop.step(0.3);
    ASSERT_FALSE(loop.lost_lock()) << i;
  }
  // What the bits still owe is the first state.
  EXPECT_NEAR(sum / kBits, 0.3, 1e-3);
  loop.x[4] = NAN;
  EXPECT_TRUE(loop.lost_lock());
  loop.catch_up();
  EXPECT_FALSE(loop.lost_lock());
}

}  // namespace
}  // namespace corvin::studio
