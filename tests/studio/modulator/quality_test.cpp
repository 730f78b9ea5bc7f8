// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the modulator's bits hold, from the bits alone.

#include <gtest/gtest.h>

#include <cstdio>

#include "studio/modulator/reference_loop.h"
#include "tests/support/bit_spectrum.h"
#include "tests/support/modulator_streams.h"

namespace corvin::studio {
namespace {

using testing::BitSpectrum;

// 2^21 bits for the transform, and what fades in before them.
constexpr std::size_t kSamples = (std::size_t{1} << 18) + 2048;

TEST(ModulatorQuality, SinesReachTheirSndr) {
  // From DSD128 on the quiet band is wider. Levels at 0 dBFS (0.5) and up to the highest that sines
  // may reach; 997 Hz at 0 dBFS is measured through the whole encoder.
  const struct {
    ModulatorGrade grade;
    int oversampling;
    double band_hz, frequency_hz, amplitude, sndr_db;
  } kRows[] = {
      {ModulatorGrade::kStandard, 64, 20000, 997, 0.6, 138.5},
      {ModulatorGrade::kStandard, 64, 20000, 6789, 0.5, 137.3},
      {ModulatorGrade::kStandard, 64, 20000, 19000, 0.5, 137.3},
      {ModulatorGrade::kHigh, 64, 20000, 997, 0.7071, 139},
      {ModulatorGrade::kBest, 64, 20000, 997, 0.7071, 142},
      {ModulatorGrade::kStandard, 128, 24000, 997, 0.5, 143.5},
      {ModulatorGrade::kBest, 128, 40000, 997, 0.5, 141.5},
      {ModulatorGrade::kStandard, 256, 50000, 997, 0.79, 155},
      {ModulatorGrade::kBest, 256, 50000, 997, 0.5, 154.8},
      {ModulatorGrade::kStandard, 512, 50000, 997, 0.83, 162},
  };
  for (const auto& row : kRows) {
    const auto made =
        modulate({row.grade, row.oversampling},
                 faded_sine(row.frequency_hz, row.amplitude, kSamples, row.oversampling));
    const BitSpectrum spectrum(made.bytes[0], dsd_rate(row.oversampling), row.band_hz);
    const double sndr = spectrum.sndr(row.frequency_hz);
    std::printf("grade %d, DSD%d, %5.0f Hz at %.4f: SNDR to %.0f Hz %.2f dB\n",
                static_cast<int>(row.grade), row.oversampling, row.frequency_hz, row.amplitude,
                row.band_hz, sndr);
    EXPECT_GE(sndr, row.sndr_db);
    EXPECT_NEAR(spectrum.tone(row.frequency_hz), 20 * std::log10(row.amplitude) - 3.0103, 0.01);
    EXPECT_EQ(made.overloads[0], 0u);
  }
}

// Loops fed with nothing or with little fall into cycles that sound as tones, unless they are good.
TEST(ModulatorQuality, QuietSignalsHaveQuietNoiseWithoutTones) {
  const struct {
    double level, sine;
    bool every_grade;
  } kSignals[] = {{0, 0, true},           {1e-7, 0, false},     {1e-5, 0, false},
                  {1.0 / 1024, 0, false}, {1.0 / 256, 0, true}, {1.0 / 16, 0, false},
                  {0, 0.5e-6, false},     {0, 0.5e-4, true},    {0, 0.5e-2, false}};
  const double idle_db[] = {-151.5, -154, -157.3};
  for (ModulatorGrade grade : kGrades) {
    for (const auto& signal : kSignals) {
      if (grade != ModulatorGrade::kStandard && !signal.every_grade) continue;
      Samples in = faded_sine(997, signal.sine, kSamples);
      for (double& sample : in) sample += signal.level;
      const BitSpectrum spectrum(modulate({grade}, in).bytes[0], dsd_rate(64), 20000);
      const double tone_hz = signal.sine > 0 ? 997 : 0;
      const bool idle = signal.level == 0 && signal.sine == 0;
      const double bound = idle_db[static_cast<int>(grade)] + (idle ? 0 : 6.5);
      EXPECT_LE(spectrum.noise(tone_hz), bound) << signal.level << ' ' << signal.sine;
      EXPECT_LE(spectrum.strongest_line(tone_hz), -150) << signal.level << ' ' << signal.sine;
      if (tone_hz > 0) {
        EXPECT_NEAR(spectrum.tone(997), 20 * std::log10(signal.sine) - 3.0103, 0.05);
      }
    }
  }
}

// The reference loop with an exact sine at the DSD rate.
Bytes reference_bytes(int oversampling, double frequency_hz, double amplitude) {
  ReferenceLoop loop(shaper_design(ModulatorGrade::kStandard, oversampling));
  Bytes bytes(kSamples);
  for (std::size_t i = 0; i < 8 * kSamples; ++i) {
    const double n = static_cast<double>(i);
    const double u = amplitude * std::min(1.0, n / 8000) *
                     std::sin(2 * std::numbers::pi * frequency_hz * n / dsd_rate(oversampling));
    if (loop.step(u) > 0) bytes[i / 8] |= static_cast<std::uint8_t>(0x80 >> i % 8);
  }
  return bytes;
}

TEST(ModulatorQuality, WordsAreAsQuietAsTheReferenceLoop) {
  for (int oversampling : {64, 256, 512}) {
    for (double amplitude : {0.0, 0.5}) {
      const double band_hz = oversampling == 64 ? 20000 : 50000;
      const double tone_hz = amplitude > 0 ? 997 : 0;
      const auto made = modulate({ModulatorGrade::kStandard, oversampling},
                                 faded_sine(997, amplitude, kSamples, oversampling));
      const BitSpectrum ours(made.bytes[0], dsd_rate(oversampling), band_hz);
      const BitSpectrum plain(reference_bytes(oversampling, 997, amplitude), dsd_rate(oversampling),
                              band_hz);
      std::printf("DSD%d at %.1f: noise %.2f, reference %.2f dB\n", oversampling, amplitude,
                  ours.noise(tone_hz), plain.noise(tone_hz));
      EXPECT_LE(ours.noise(tone_hz), plain.noise(tone_hz) + (oversampling == 512 ? 1.5 : 1));
    }
  }
}

}  // namespace
}  // namespace corvin::studio
