// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How a stream starts, and at what level it goes on.

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

constexpr std::uint32_t kGrades[] = {CORVIN_MODULATOR_STANDARD, CORVIN_MODULATOR_HIGH,
                                     CORVIN_MODULATOR_BEST};

std::vector<double> round_trip(std::uint32_t grade, bool low, const std::vector<double>& sound,
                               std::uint32_t phase = CORVIN_LINEAR_PHASE) {
  EncoderSettings settings;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  settings.modulator = grade;
  settings.low_latency = low;
  settings.phase = phase;
  return decode_mono(2822400, 44100, encode(settings, as_f64(sound)));
}

// A modulator takes over from the silence pattern: against the same sound half a second after the
// start of a stream, nothing of that is heard. In minimum phase, since in linear phase the sound
// rings before its first frame too, where there is no stream yet.
TEST(Start, FirstMillisecondIsClean) {
  constexpr std::size_t kBefore = 22050;
  for (const std::uint32_t grade : kGrades) {
    for (const bool low : {false, true}) {
      for (const double level : {0.0, 0.5}) {
        std::vector<double> sound = sine(997, 44100, level, 4410);
        const std::vector<double> out = round_trip(grade, low, sound, CORVIN_MINIMUM_PHASE);
        sound.insert(sound.begin(), kBefore, 0.0);
        const std::vector<double> late = round_trip(grade, low, sound, CORVIN_MINIMUM_PHASE);
        double worst = 0;
        for (std::size_t i = 0; i < 44; ++i) {
          worst = std::max(worst, std::fabs(out[i] - (level == 0 ? 0 : late[kBefore + i])));
        }
        const double db = 20 * std::log10(worst);
        std::printf("grade %u%s, level %.1f: %.1f dBFS\n", grade, low ? " low" : "", level, db);
        EXPECT_LT(db, -90) << grade << ' ' << low << ' ' << level;
      }
    }
  }
}

TEST(Start, LevelsAreExactDownToMinus60Db) {
  constexpr std::size_t kFrames = 13230;
  for (const std::uint32_t grade : kGrades) {
    for (const double level_db : {0.0, -1.0, -6.0, -20.0, -40.0, -60.0}) {
      const std::vector<double> in = sine(997, 44100, std::pow(10, level_db / 20), kFrames);
      const std::vector<double> out = round_trip(grade, level_db == -6, in);
      double power = 0, product = 0;
      for (std::size_t i = 1000; i < kFrames - 1000; ++i) {
        power += in[i] * in[i];
        product += in[i] * out[i];
      }
      EXPECT_LT(std::fabs(20 * std::log10(product / power)), 0.001) << grade << ' ' << level_db;
    }
  }
}

}  // namespace
}  // namespace corvin::studio
