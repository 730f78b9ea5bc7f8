// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the modulator's bits hold, from the bits alone.

#include <gtest/gtest.h>

#include <cstdio>

#include "studio/modulator/interpolation.h"
#include "studio/modulator/reference_loop.h"
#include "tests/studio_modulator/bit_spectrum.h"
#include "tests/studio_modulator/streams.h"

namespace corvin::studio {
namespace {

using testing::BitSpectrum;
using testing::Bytes;
using testing::dsd_rate;
using testing::modulate;
using testing::Samples;
using testing::sine;

// 2^21 bits for the transform, and what fades in before them.
constexpr std::size_t kSamples = (std::size_t{1} << 18) + 2048;

ModulatorConfig config_for(ModulatorGrade grade, int oversampling) {
  ModulatorConfig config;
  config.grade = grade;
  config.oversampling = oversampling;
  return config;
}

TEST(ModulatorQuality, SinesReachTheirSndr) {
  // From DSD128 on the quiet band is wider. Levels at 0 dBFS (0.5) and +3 dB (0.7071).
  const struct {
    ModulatorGrade grade;
    int oversampling;
    double band_hz, frequency_hz, amplitude, sndr_db;
  } kRows[] = {
      {ModulatorGrade::kStandard, 64, 20000, 997, 0.5, 145},
      {ModulatorGrade::kStandard, 64, 20000, 997, 0.7071, 147},
      {ModulatorGrade::kStandard, 64, 20000, 6789, 0.5, 144.5},
      {ModulatorGrade::kStandard, 64, 20000, 19000, 0.5, 144.5},
      {ModulatorGrade::kHigh, 64, 20000, 997, 0.5, 150},
      {ModulatorGrade::kHigh, 64, 20000, 997, 0.7071, 151},
      {ModulatorGrade::kBest, 64, 20000, 997, 0.5, 154},
      {ModulatorGrade::kBest, 64, 20000, 997, 0.7071, 156},
      {ModulatorGrade::kStandard, 128, 20000, 997, 0.5, 150},
      {ModulatorGrade::kStandard, 128, 40000, 997, 0.5, 144.5},
      {ModulatorGrade::kBest, 128, 40000, 997, 0.5, 154},
      {ModulatorGrade::kStandard, 256, 50000, 997, 0.5, 154.8},
      {ModulatorGrade::kStandard, 256, 50000, 997, 0.79, 155},
      {ModulatorGrade::kBest, 256, 50000, 997, 0.5, 154.8},
      {ModulatorGrade::kStandard, 512, 50000, 997, 0.5, 164.5},
      {ModulatorGrade::kStandard, 512, 50000, 997, 0.83, 162},
  };
  for (const auto& row : kRows) {
    const auto made = modulate(config_for(row.grade, row.oversampling),
                               sine(row.frequency_hz, row.amplitude, kSamples, row.oversampling));
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
  for (ModulatorGrade grade :
       {ModulatorGrade::kStandard, ModulatorGrade::kHigh, ModulatorGrade::kBest}) {
    const double idle_db = grade == ModulatorGrade::kStandard ? -156
                           : grade == ModulatorGrade::kHigh   ? -163.5
                                                              : -167;
    const bool short_list = grade != ModulatorGrade::kStandard;
    for (double level : {0.0, 1e-7, 1e-5, 1.0 / 1024, 1.0 / 256, 1.0 / 16}) {
      if (short_list && level != 0 && level != 1.0 / 256) continue;
      const auto made = modulate(config_for(grade, 64), Samples(kSamples, level));
      const BitSpectrum spectrum(made.bytes[0], dsd_rate(64), 20000);
      std::printf("grade %d, level %.7f: noise %.2f dB, strongest line %.1f dB\n",
                  static_cast<int>(grade), level, spectrum.noise(), spectrum.strongest_line());
      EXPECT_LE(spectrum.noise(), level == 0 ? idle_db : idle_db + 4.5);
      EXPECT_LE(spectrum.strongest_line(), -160);
    }
    for (double amplitude : {0.5e-6, 0.5e-4, 0.5e-2}) {
      if (short_list && amplitude != 0.5e-4) continue;
      const auto made = modulate(config_for(grade, 64), sine(997, amplitude, kSamples));
      const BitSpectrum spectrum(made.bytes[0], dsd_rate(64), 20000);
      EXPECT_LE(spectrum.noise(997), idle_db + 4.5) << amplitude;
      EXPECT_LE(spectrum.strongest_line(997), -160) << amplitude;
      EXPECT_NEAR(spectrum.tone(997), 20 * std::log10(amplitude) - 3.0103, 0.01);
    }
  }
}

// The reference loop with an exact sine at the DSD rate.
Bytes reference_bytes(int oversampling, double frequency_hz, double amplitude) {
  ReferenceLoop loop(noise_shaper(ModulatorGrade::kStandard, oversampling));
  Bytes bytes(kSamples);
  for (std::size_t i = 0; i < 8 * kSamples; ++i) {
    const double n = static_cast<double>(i);
    const double u = amplitude * std::min(1.0, n / 8000) *
                     std::sin(2 * std::numbers::pi * frequency_hz * n / dsd_rate(oversampling));
    if (loop.step(u) > 0) bytes[i / 8] |= static_cast<std::uint8_t>(0x80 >> i % 8);
  }
  return bytes;
}

TEST(ModulatorQuality, BlocksAreAsQuietAsTheReferenceLoop) {
  for (int oversampling : {64, 256, 512}) {
    for (double amplitude : {0.0, 0.5}) {
      const double band_hz = oversampling == 64 ? 20000 : 50000;
      const double tone_hz = amplitude > 0 ? 997 : 0;
      const auto made = modulate(config_for(ModulatorGrade::kStandard, oversampling),
                                 sine(997, amplitude, kSamples, oversampling));
      const BitSpectrum ours(made.bytes[0], dsd_rate(oversampling), band_hz);
      const BitSpectrum plain(reference_bytes(oversampling, 997, amplitude), dsd_rate(oversampling),
                              band_hz);
      std::printf("DSD%d at %.1f: noise %.2f, reference %.2f dB\n", oversampling, amplitude,
                  ours.noise(tone_hz), plain.noise(tone_hz));
      EXPECT_LE(ours.noise(tone_hz), plain.noise(tone_hz) + (oversampling == 512 ? 1.5 : 1));
    }
  }
}

// Level and time of a sine that came through, against the model that the interpolation states.
TEST(ModulatorQuality, ResponseAndTimeAreTheStatedOnes) {
  for (bool wide_band : {false, true}) {
    for (double frequency_hz : {997.0, 18000.0}) {
      ModulatorConfig config = config_for(ModulatorGrade::kStandard, 64);
      config.wide_band = wide_band;
      const double amplitude = 0.4;
      const std::size_t settle = 2048;
      const auto made = modulate(config, sine(frequency_hz, amplitude, 1 << 17));
      const Bytes used(made.bytes[0].begin() + settle, made.bytes[0].end());
      const auto [first, samples] =
          testing::decimate(used, 32, 20000 / dsd_rate(64), 68200 / dsd_rate(64));
      // Correlation under a smooth window.
      std::complex<double> sum = 0;
      double weight = 0;
      const std::vector<double> window = testing::kaiser(samples.size() / 2 - 1, 20);
      for (std::size_t i = 0; i < window.size(); ++i) {
        const double bit = static_cast<double>(8 * settle + first + 32 * i);
        const double angle = 2 * std::numbers::pi * frequency_hz * bit / dsd_rate(64);
        sum += window[i] * samples[i] * std::polar(1.0, -angle);
        weight += window[i];
      }
      const Modulator modulator(config);
      const std::complex<double> gain = sum / weight * std::complex<double>(0, 2) / amplitude;
      const double expected = modulator.response(frequency_hz / (dsd_rate(64) / 8));
      EXPECT_NEAR(20 * std::log10(std::abs(gain) / expected), 0, 1e-5);
      const double delay_bits =
          -std::arg(gain) / (2 * std::numbers::pi * frequency_hz) * dsd_rate(64);
      EXPECT_NEAR(delay_bits, modulator.bit_offset(), 1e-3);
      EXPECT_NEAR(20 * std::log10(expected), 0, 0.002);
    }
  }
}

TEST(ModulatorQuality, ImagesOfTheInterpolationAreLow) {
  for (bool wide_band : {false, true}) {
    const Interpolation interpolation(wide_band);
    const double edge = wide_band ? 0.1417 : 0.068;
    for (double part : {0.0, 0.3, 0.7, 1.0}) {
      for (int image = 1; image < 8; ++image) {
        for (double sign : {-1.0, 1.0}) {
          const double response = interpolation.response(image + sign * part * edge);
          EXPECT_LE(std::abs(response), wide_band ? 6e-5 : 5e-5) << image << ' ' << sign * part;
        }
      }
    }
  }
}

}  // namespace
}  // namespace corvin::studio
