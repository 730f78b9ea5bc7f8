// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The figures that the encoder promises, and the committed tables of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdio>
#include <string>

#include "studio/encode/encode_chain.h"
#include "tests/support/bit_spectrum.h"
#include "tests/support/committed_table.h"
#include "tests/support/studio_streams.h"
#include "tests/support/up_response.h"

namespace corvin::studio {
namespace {

TEST(EncodeQuality, EveryPairKeepsItsPromise) {
  std::string text =
      "pcm_rate,dsd_rate,pass_hz,stop_hz,ripple_db,image_db,modulator_image_db,taps\n";
  for (std::uint32_t dsd_base : {44100u, 48000u}) {
    for (std::uint32_t dsd = 64; dsd <= 512; dsd *= 2) {
      for (std::uint32_t pcm_base : {44100u, 48000u}) {
        for (std::uint32_t pcm = 1; pcm <= 16; pcm *= 2) {
          const auto chain =
              make_encode_chain({pcm_base * pcm, dsd_base * dsd}, ModulatorGrade::kStandard);
          ASSERT_TRUE(chain.has_value());
          const EncodePlan& plan = chain->plan;
          const UpResponse::Figures figures = UpResponse(plan).figures();
          EXPECT_LE(figures.ripple_db, 1e-6) << plan.describe();
          EXPECT_LE(figures.image_db, -150) << plan.describe();
          char line[160];
          std::snprintf(line, sizeof line, "%u,%u,%.1f,%.1f,%.7f,%.1f,%.1f,%zu\n",
                        plan.config.pcm_rate, plan.config.dsd_rate, plan.config.pass_hz,
                        plan.config.stop_hz, figures.ripple_db, figures.image_db,
                        figures.own_image_db, plan.steep_taps);
          text += line;
        }
      }
    }
  }
  testing::expect_committed(text, "encode.csv", -158);
}

// Edges that are asked for, as narrow and as wide as can be, in either phase; every ratio of the
// transform and a PCM rate above the modulator's.
TEST(EncodeQuality, OwnEdgesKeepTheSamePromise) {
  for (const Phase phase : {Phase::kLinear, Phase::kMinimum}) {
    for (const EncodePlanConfig& config :
         {EncodePlanConfig{44100, 2822400, 0, 0, phase},
          EncodePlanConfig{48000, 2822400, 20000, 22000, phase},
          EncodePlanConfig{44100, 3072000, 18000, 0, phase},
          EncodePlanConfig{176400, 2822400, 20000, 32000, phase},
          EncodePlanConfig{192000, 5644800, 0, 48000, phase},
          EncodePlanConfig{705600, 2822400, 20000, 0.03 * 176400 + 20000, phase},
          EncodePlanConfig{96000, 22579200, 0.97 * 48000, 48000, phase}}) {
      const auto chain = make_encode_chain(config, ModulatorGrade::kStandard);
      ASSERT_TRUE(chain.has_value()) << config.pcm_rate << " to " << config.dsd_rate;
      const EncodePlan& plan = chain->plan;
      const UpResponse::Figures figures = UpResponse(plan).figures();
      EXPECT_LE(figures.ripple_db, phase == Phase::kMinimum ? 1e-5 : 1e-6) << plan.describe();
      EXPECT_LE(figures.image_db, -150) << plan.describe();
      if (config.stop_hz != 0) {
        EXPECT_EQ(plan.config.stop_hz, config.stop_hz);
      }
    }
  }
}

// One row of the noise table: what a grade leaves in the band up to 20 kHz and in its wide one.
struct Case {
  std::uint32_t pcm, dsd, grade;
  double wide_hz;
  double sndr_db, idle_db;  // promised up to 20 kHz
};
constexpr Case kCases[] = {
    {44100, 2822400, CORVIN_MODULATOR_STANDARD, 20000, 137.5, -151.5},
    {44100, 2822400, CORVIN_MODULATOR_HIGH, 20000, 138.2, -154},
    {44100, 2822400, CORVIN_MODULATOR_BEST, 20000, 141.5, -157.3},
    {88200, 5644800, CORVIN_MODULATOR_STANDARD, 40000, 143.5, -156.3},
    {88200, 5644800, CORVIN_MODULATOR_HIGH, 40000, 143.5, -159.5},
    {88200, 5644800, CORVIN_MODULATOR_BEST, 40000, 146.3, -162},
    {176400, 11289600, CORVIN_MODULATOR_STANDARD, 50000, 155, -164},
    {352800, 22579200, CORVIN_MODULATOR_STANDARD, 50000, 160, -170},
};
constexpr const char* kGrades[] = {"standard", "high", "best"};
constexpr double kToneHz = 997;
constexpr double kSeconds = 0.8;

Bytes tone_bits(const Case& row, double amplitude, double seconds) {
  EncoderSettings settings;
  settings.pcm_rate = row.pcm;
  settings.dsd_rate = row.dsd;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  settings.modulator = row.grade;
  const auto frames = static_cast<std::size_t>(row.pcm * seconds);
  return encode(settings, as_f64(sine(kToneHz, row.pcm, amplitude, frames)));
}

TEST(EncodeQuality, NoiseKeepsItsPromise) {
  std::string text = "pcm_rate,dsd_rate,modulator,sndr_db,noise_db,idle_db,wide_hz,wide_noise_db\n";
  for (const Case& row : kCases) {
    const std::size_t settle = row.dsd / 8 / 100;
    const Bytes tone = tone_bits(row, 1.0, kSeconds);
    const Bytes idle = tone_bits(row, 0.0, kSeconds);
    const testing::BitSpectrum loud(tone, row.dsd, 20000, settle);
    const testing::BitSpectrum quiet(idle, row.dsd, 20000, settle);
    const std::string name = std::to_string(row.dsd) + ' ' + kGrades[row.grade];
    EXPECT_GE(loud.sndr(kToneHz), row.sndr_db) << name;
    EXPECT_LE(quiet.noise(), row.idle_db) << name;
    // Full scale is 50 % modulation.
    EXPECT_NEAR(loud.tone(kToneHz), 10 * std::log10(0.125), 1e-5) << name;
    const testing::BitSpectrum wide(tone, row.dsd, row.wide_hz, settle);
    char line[160];
    std::snprintf(line, sizeof line, "%u,%u,%s,%.1f,%.1f,%.1f,%.0f,%.1f\n", row.pcm, row.dsd,
                  kGrades[row.grade], loud.sndr(kToneHz), loud.noise(kToneHz), quiet.noise(),
                  row.wide_hz, wide.noise(kToneHz));
    text += line;
  }
  testing::expect_committed(text, "encode_noise.csv", -400);
}

// Mean density in sixths of an octave, in dB of full modulation in 1 Hz, straight from the bits.
std::vector<std::string> densities(const Case& row, const std::vector<double>& edges) {
  constexpr std::size_t kPoints = 1u << 20;
  const std::size_t settle = row.dsd / 8 / 100;
  const Bytes bits = tone_bits(row, 1.0, static_cast<double>(kPoints) / row.dsd + 0.03);
  const std::vector<double> window = testing::kaiser(kPoints / 2, 24);
  std::vector<std::complex<double>> x(kPoints);
  double energy = 0;
  for (std::size_t i = 0; i < kPoints; ++i) {
    x[i] = (bits[settle + i / 8] >> (7 - i % 8) & 1) != 0 ? window[i] : -window[i];
    energy += window[i] * window[i];
  }
  testing::transform(x);
  const double bin_hz = row.dsd / static_cast<double>(kPoints);
  std::vector<std::string> cells;
  for (std::size_t band = 0; band + 1 < edges.size(); ++band) {
    const auto first = static_cast<std::size_t>(std::ceil(edges[band] / bin_hz));
    const auto last = static_cast<std::size_t>(std::ceil(edges[band + 1] / bin_hz));
    std::string cell;
    if (last > first && last <= kPoints / 2) {
      double power = 0;
      for (std::size_t k = first; k < last; ++k) power += 2 * std::norm(x[k]);
      power /= static_cast<double>(last - first) * energy * row.dsd;
      char figure[20];
      std::snprintf(figure, sizeof figure, "%.1f", 10 * std::log10(power));
      cell = figure;
    }
    cells.push_back(cell);
  }
  return cells;
}

TEST(EncodeQuality, SpectraAreTheCommittedOnes) {
  std::vector<double> edges;
  for (double hz = 100; hz < 12e6; hz *= std::pow(2, 1.0 / 6)) edges.push_back(hz);
  std::string text = "hz";
  std::vector<std::vector<std::string>> columns;
  for (const Case& row : kCases) {
    if (row.dsd == 5644800 && row.grade != CORVIN_MODULATOR_STANDARD) continue;
    text += ",dsd" + std::to_string(row.dsd / 44100) + "_" + kGrades[row.grade] + "_db";
    columns.push_back(densities(row, edges));
  }
  text += '\n';
  for (std::size_t band = 0; band + 1 < edges.size(); ++band) {
    char cell[20];
    std::snprintf(cell, sizeof cell, "%.0f", std::sqrt(edges[band] * edges[band + 1]));
    text += cell;
    for (const auto& column : columns) text += "," + column[band];
    text += '\n';
  }
  testing::expect_committed(text, "encode_spectra.csv", -400);
}

}  // namespace
}  // namespace corvin::studio
