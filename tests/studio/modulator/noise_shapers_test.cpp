// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The coefficients, and the loop that any engineer can read.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "studio/modulator/noise_shapers.h"
#include "studio/modulator/reference_loop.h"

namespace corvin::studio {
namespace {

TEST(NoiseShapers, TheCommittedWeightsAreTheGeneratorsOwn) {
  if (std::system("python3 -c 1") != 0) GTEST_SKIP() << "no python3";
  const std::string source = CORVIN_SOURCE_DIR;
  const std::string command = "python3 '" + source + "/tools/design_noise_shapers.py' | cmp - '" +
                              source + "/studio/modulator/noise_shaper_weights.inc'";
  EXPECT_EQ(std::system(command.c_str()), 0);
}

// First and last weights as an independent solver printed them.
TEST(NoiseShapers, WeightsAgreeWithAnIndependentSolution) {
  const ShaperDesign& high = shaper_design(ModulatorGrade::kHigh, 64);
  const ShaperDesign& best = shaper_design(ModulatorGrade::kBest, 64);
  EXPECT_NEAR(high.c[0] / 0x1.484806357a578p-1, 1, 1e-12);
  EXPECT_NEAR(high.c[9] / -0x1.2477b20f0d088p-38, 1, 1e-10);
  EXPECT_NEAR(best.c[0] / 0x1.70c558fa9f22p-1, 1, 1e-12);
  EXPECT_NEAR(best.c[9] / -0x1.742b6da28f643p-34, 1, 1e-10);
}

TEST(NoiseShapers, TheReferenceLoopKeepsItsSignalAndItsLock) {
  ReferenceLoop loop(shaper_design(ModulatorGrade::kStandard, 64));
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
