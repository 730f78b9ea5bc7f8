// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/spectrum_findings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace corvin::cli {
namespace {

constexpr double kUsedPart = 0.95;  // above, the decoder's filter closes
constexpr double kLowestFloorHz = 5000;
constexpr size_t kHalfOctave = 6;   // twelfths
constexpr double kRise = 10;        // 10 dB
constexpr double kLeastRise = 100;  // 20 dB
constexpr double kHighestLineHz = 20000;
constexpr double kLineRatio = 31.6;  // 15 dB
constexpr double kLeastLine =
    1e-17;  // -170 dB: what a window leaves of a strong tone is below that
constexpr size_t kMostLines = 10;

double median(const double* begin, const double* end) {
  std::vector<double> sorted(begin, end);
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  return *middle;
}

size_t bin_at(const Spectrum& spectrum, double hz) {
  return std::min(static_cast<size_t>(hz / spectrum.bin_hz), spectrum.bins.size() - 1);
}

// The median bin around each twelfth of an octave.
struct Floor {
  double hz;
  double bin;
};

std::vector<Floor> floor_of(const Spectrum& spectrum) {
  std::vector<Floor> floor;
  for (double hz = kLowestFloorHz; hz < kUsedPart * spectrum.highest_hz();
       hz *= std::exp2(1.0 / 12)) {
    const size_t from = bin_at(spectrum, hz * std::exp2(-1.0 / 12));
    const size_t to = std::max(bin_at(spectrum, hz * std::exp2(1.0 / 12)), from + 1);
    floor.push_back({hz, median(&spectrum.bins[from], spectrum.bins.data() + to)});
  }
  return floor;
}

// Up to where what is above `from_hz` has the given power.
std::optional<double> reaches(const Spectrum& spectrum, double from_hz, double power) {
  double sum = 0;
  for (size_t i = bin_at(spectrum, from_hz); i < spectrum.bins.size(); ++i) {
    sum += spectrum.bins[i] / spectrum.noise_bins;
    if (sum > power) return static_cast<double>(i) * spectrum.bin_hz;
  }
  return {};
}

}  // namespace

std::optional<RisingNoise> rising_noise(const Spectrum& spectrum) {
  if (spectrum.bins.empty()) return {};
  const std::vector<Floor> floor = floor_of(spectrum);
  double lowest = 0;
  size_t lowest_at = 0;
  for (size_t i = 0; i + kHalfOctave <= floor.size(); ++i) {
    double mean = 0;
    for (size_t k = i; k < i + kHalfOctave; ++k) mean += floor[k].bin / kHalfOctave;
    if (i > 0 && mean >= lowest) continue;
    lowest = mean;
    lowest_at = i;
  }
  size_t highest_at = lowest_at;
  for (size_t i = lowest_at; i < floor.size(); ++i)
    if (floor[i].bin > floor[highest_at].bin) highest_at = i;
  if (!(lowest > 0) || floor[highest_at].bin < kLeastRise * lowest) return {};
  size_t begin = highest_at;
  while (begin > lowest_at && floor[begin - 1].bin >= kRise * lowest) --begin;
  const double hz = floor[begin].hz;
  const double third_octave_hz = hz * (std::exp2(1.0 / 6) - std::exp2(-1.0 / 6));
  return RisingNoise{
      .begins_hz = hz,
      .third_octave = floor[begin].bin * third_octave_hz / spectrum.bin_hz / spectrum.noise_bins,
      .outweighs_hz = reaches(spectrum, hz, spectrum.power(20, hz))};
}

std::vector<Line> lines_of(const Spectrum& spectrum) {
  if (spectrum.bins.empty()) return {};
  const std::vector<double>& bins = spectrum.bins;
  const auto lobe = static_cast<size_t>(std::ceil(spectrum.lobe_bins));
  const size_t end = std::min(bin_at(spectrum, kHighestLineHz) + 1, bins.size());
  std::vector<Line> lines;
  double floor = 0;
  size_t floor_holds_to = 0;
  for (auto i = std::max(static_cast<size_t>(20 / spectrum.bin_hz), lobe); i + lobe < end; ++i) {
    // A lobe has its peak in the middle.
    const auto around = bins.begin() + static_cast<std::ptrdiff_t>(i);
    if (std::max_element(around - static_cast<std::ptrdiff_t>(lobe),
                         around + static_cast<std::ptrdiff_t>(lobe) + 1) != around)
      continue;
    if (i >= floor_holds_to) {
      // The floor changes slowly: for each bin anew it would be most of the work.
      const size_t half = std::max(i / 8, 4 * lobe);
      const size_t to = std::min(i + half, bins.size());
      floor = median(&bins[i > half ? i - half : 0], bins.data() + to);
      floor_holds_to = i + i / 256 + 1;
    }
    if (bins[i] < std::max(kLineRatio * floor, kLeastLine)) continue;
    if (!(bins[i - 1] > 0) || !(bins[i + 1] > 0)) continue;
    const double below = std::log(bins[i - 1]), here = std::log(bins[i]),
                 above = std::log(bins[i + 1]);
    const double offset = 0.5 * (below - above) / (below - 2 * here + above);
    double power = 0;
    for (size_t k = i - lobe; k <= i + lobe; ++k) power += bins[k];
    lines.push_back({.hz = (static_cast<double>(i) + offset) * spectrum.bin_hz,
                     .power = power / spectrum.noise_bins});
  }
  std::sort(lines.begin(), lines.end(),
            [](const Line& a, const Line& b) { return a.power > b.power; });
  if (lines.size() > kMostLines) lines.resize(kMostLines);
  return lines;
}

}  // namespace corvin::cli
