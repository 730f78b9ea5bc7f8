// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Loud signals for seconds on end: the loops never lose lock.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/modulator_streams.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kSecond = 352800;

double loudest(ModulatorGrade grade) { return grade == ModulatorGrade::kStandard ? 0.6 : 0.7071; }

TEST(ModulatorSustained, FortyEightSines) {
  for (ModulatorGrade grade : kGrades) {
    ModulatorConfig config;
    config.grade = grade;
    const std::size_t count = grade == ModulatorGrade::kStandard ? 6 * kSecond : kSecond;
    for (int i = 0; i < 48; i += 2) {
      const double low = 20 * std::pow(1000, i / 47.0);
      const double high = 20 * std::pow(1000, (i + 1) / 47.0);
      const auto made = modulate(config, {faded_sine(low, loudest(grade), count),
                                          faded_sine(high, loudest(grade), count)});
      EXPECT_EQ(made.overloads[0], 0u) << low << " Hz";
      EXPECT_EQ(made.overloads[1], 0u) << high << " Hz";
    }
  }
}

TEST(ModulatorSustained, SixteenConstants) {
  ModulatorConfig config;
  for (int i = 1; i <= 16; i += 2) {
    const auto made =
        modulate(config, {Samples(3 * kSecond, loudest(config.grade) * i / 16),
                          Samples(3 * kSecond, -loudest(config.grade) * (i + 1) / 16)});
    EXPECT_EQ(made.overloads[0] + made.overloads[1], 0u) << i;
  }
}

}  // namespace
}  // namespace corvin::studio
