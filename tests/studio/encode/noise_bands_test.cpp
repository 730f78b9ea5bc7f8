// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What every grade leaves in bands from 20 Hz to 200 kHz, and its strongest idle line: the
// committed table of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <string>

#include "tests/support/bit_spectrum.h"
#include "tests/support/committed_table.h"
#include "tests/support/modulator_streams.h"

namespace corvin::studio {
namespace {

constexpr double kToneHz = 1033;
constexpr std::array<double, 8> kEdges = {20, 20e3, 24e3, 30e3, 40e3, 50e3, 100e3, 200e3};
constexpr std::size_t kBands = kEdges.size() - 1;
using Bands = std::array<double, kBands>;

// Power per band in dB of a full-modulation sine, straight from the bits: a mean over windows of
// 2^17 bits of DSD64 and as long at other rates. The tone is left out.
Bands band_powers(const Bytes& bytes, int oversampling) {
  const auto points = std::size_t{1 << 11} * static_cast<std::size_t>(oversampling);
  const std::vector<double> window = testing::kaiser(points / 2, 24);
  double energy = 0;
  for (std::size_t i = 0; i < points; ++i) energy += window[i] * window[i];
  const double bin_hz = dsd_rate(oversampling) / static_cast<double>(points);
  Bands powers = {};
  double windows = 0;
  constexpr std::size_t kSettle = 4096;
  for (std::size_t at = 8 * kSettle; at + points <= 8 * bytes.size(); at += points / 2) {
    std::vector<std::complex<double>> x(points);
    for (std::size_t i = 0; i < points; ++i) {
      const std::size_t bit = at + i;
      x[i] = (bytes[bit / 8] >> (7 - bit % 8) & 1) != 0 ? window[i] : -window[i];
    }
    testing::transform(x);
    std::size_t band = 0;
    for (std::size_t k = 10; static_cast<double>(k) * bin_hz < kEdges.back(); ++k) {
      const double hz = static_cast<double>(k) * bin_hz;
      while (hz >= kEdges[band + 1]) ++band;
      if (std::fabs(hz - kToneHz) > 12 * bin_hz) powers[band] += std::norm(x[k]);
    }
    ++windows;
  }
  for (double& power : powers) {
    power = 10 * std::log10(4 * power / (windows * energy * static_cast<double>(points)));
  }
  return powers;
}

// Constants whose idle tones, at the constant times the DSD rate and its multiples, fall into the
// audible band, and some beside simple fractions, where what is left of the fraction makes them.
std::vector<double> constants() {
  std::vector<double> made;
  for (int i = 0; i < 30; ++i) made.push_back(3e-5 * std::pow(1.21, i));
  for (double fraction : {0.0625, 0.1, 0.125, 0.2, 0.25, 1.0 / 3}) {
    for (double beside : {0.0, 1e-4, 7e-4}) made.push_back(fraction + beside);
  }
  return made;
}

// Amplitude of the strongest line up to 20 kHz over all constants, in dB of full modulation.
double worst_idle_line(ModulatorGrade grade, int oversampling) {
  constexpr std::size_t kSamples = (1 << 16) + 4096;  // 2^19 bits
  const std::vector<double> levels = constants();
  double worst = -400;
  for (std::size_t i = 0; i < levels.size(); i += 2) {
    const Modulated made = modulate(
        {grade, oversampling}, {Samples(kSamples, levels[i]), Samples(kSamples, levels[i + 1])});
    for (const Bytes& bytes : made.bytes) {
      const testing::BitSpectrum spectrum(bytes, dsd_rate(oversampling), 20000, 2048);
      worst = std::max(worst, spectrum.strongest_line());
    }
  }
  return worst;
}

struct Case {
  ModulatorGrade grade;
  int oversampling;
  double in_band_db;  // promised up to 24 kHz under sines up to 0 dBFS
  double line_db;     // promised
};
constexpr Case kCases[] = {
    {ModulatorGrade::kStandard, 64, -129, -155},  {ModulatorGrade::kHigh, 64, -132, -151},
    {ModulatorGrade::kBest, 64, -140.5, -163},    {ModulatorGrade::kStandard, 128, -150, -148},
    {ModulatorGrade::kHigh, 128, -150, -153},     {ModulatorGrade::kBest, 128, -150, -155},
    {ModulatorGrade::kStandard, 256, -165, -155}, {ModulatorGrade::kStandard, 512, -167, -155}};
constexpr const char* kNames[] = {"standard", "high", "best"};

TEST(NoiseBands, EveryGradeKeepsItsPromise) {
  const std::pair<const char*, double> signals[] = {
      {"silence", 0}, {"-60", 0.0005}, {"-6", 0.25}, {"0", 0.5}, {"+3", 0.7071}};
  std::string text =
      "dsd_rate,modulator,signal_dbfs,to_20k,20k_24k,24k_30k,30k_40k,40k_50k,50k_100k,100k_200k,"
      "worst_idle_line\n";
  for (const Case& row : kCases) {
    char line[40];
    std::snprintf(line, sizeof line, ",%.1f", worst_idle_line(row.grade, row.oversampling));
    const std::string idle = line;
    EXPECT_LE(std::stod(idle.substr(1)), row.line_db);
    for (const auto& [signal, amplitude] : signals) {
      const auto samples = static_cast<std::size_t>(row.oversampling) * 256 * 5 / 2 + 8192;
      const Modulated made = modulate({row.grade, row.oversampling},
                                      faded_sine(kToneHz, amplitude, samples, row.oversampling));
      EXPECT_EQ(made.overloads[0], 0u);
      const Bands bands = band_powers(made.bytes[0], row.oversampling);
      text += std::to_string(44100 * row.oversampling) + "," + kNames[static_cast<int>(row.grade)] +
              "," + signal;
      for (double power : bands) {
        std::snprintf(line, sizeof line, ",%.1f", power);
        text += line;
      }
      text += idle + "\n";
      if (amplitude > 0.5) continue;
      EXPECT_LE(std::max(bands[0], bands[1]), row.in_band_db) << text;
      // No hump: where the noise is more than nothing, the density only rises.
      for (std::size_t i = 1; i + 1 < kBands; ++i) {
        const auto density = [&](std::size_t band) {
          return bands[band] - 10 * std::log10(kEdges[band + 1] - kEdges[band]);
        };
        if (bands[i] > -145) {
          EXPECT_LE(density(i), density(i + 1) + 3) << text;
        }
      }
    }
  }
  testing::expect_committed(text, "encode_bands.csv", -400);
}

}  // namespace
}  // namespace corvin::studio
