// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Lengths, edges and limits of the designs. Their taps show in what comes out of whole conversions,
// which tests/decode and tests/quality compare with models in double precision.

#include "classic/foundation/lowpass_design.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(LowpassDesign, DecoderLengthRules) {
  struct Row {
    double cutoff;
    int budget;
    double transition;
    int taps_per_phase;
  };
  // Lengths from the Kaiser estimate 82.05 / 14.36 / transition + 1, rounded up to odd by hand.
  const Row rows[] = {
      {44100, 65536, 2 * 44100.0 / 2822400, 185},
      {22050, 65536, 0.1, 59},
      {24000, 65536, 0.1, 59},
      {352800, 65536, 352800.0 / 2822400, 47},
      {5512.5, 65536, 11025.0 / 2822400, 1465},
      {5512.5, 4096, 11025.0 / 2822400, 513},  // the budget decides, made odd
  };
  for (const Row& row : rows) {
    CFIRFilter filter(row.budget);
    EXPECT_EQ(filter.Init(2822400, 2822400, row.cutoff, 8, 90), (row.taps_per_phase + 1) * 8);
    EXPECT_EQ(filter.transition, row.transition);
    EXPECT_EQ(filter.tapsPerPhase, row.taps_per_phase);
  }
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

// Whatever stop band is asked for, the encoder's is 90 dB and its budget 3072 taps.
TEST(LowpassDesign, EncoderLengthRules) {
  CFIRFilterEnc filter;
  for (const double stop_band : {30.0, 120.0})
    EXPECT_EQ(filter.Init(2822400, 44100, 20000, 64, stop_band), (49 + 1) * 64);
  EXPECT_EQ(filter.Init(2822400, 44100, 20000, 4, 0), (59 + 1) * 4);
  EXPECT_EQ(filter.transition, 0.1);
  EXPECT_EQ(filter.Init(2822400, 176400, 44100, 4, 0), (25 + 1) * 4);  // 5.7138 * 4 + 1, up to odd
  EXPECT_EQ(filter.transition, 0.25);
}

TEST(LowpassDesign, AbsurdArguments) {
  CFIRFilter filter(65536);
  EXPECT_THROW(filter.Init(2822400, 2822400, 44100, 0, 90), std::invalid_argument);
  EXPECT_EQ(filter.Init(2822400, 2822400, 0, 8, 90), (8193 + 1) * 8);  // no width: the whole budget
  EXPECT_EQ(filter.Init(2822400, 0, 44100, 8, 90), (1 + 1) * 8);       // endless width: one tap
  EXPECT_EQ(filter.Init(0, 2822400, -44100, 8, 90), (1 + 1) * 8);
}

}  // namespace
