// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What loud and absurd signals do to the modulator, and how it comes back.

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <limits>

#include "studio/kernels/path_search.h"
#include "studio/modulator/input_limiter.h"
#include "studio/modulator/noise_shapers.h"
#include "tests/support/bit_spectrum.h"
#include "tests/support/modulator_streams.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kSecond = 352800;  // samples at DSD64
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double wave(double frequency_hz, double t) {
  return std::sin(2 * std::numbers::pi * frequency_hz * t);
}

// A square wave as a band-limiting filter leaves it.
double square(double frequency_hz, double t) {
  double sum = 0;
  for (int k = 1; k * frequency_hz < 20000; k += 2) sum += wave(k * frequency_hz, t) / k;
  return sum * 4 / std::numbers::pi;
}

// Noise of audible and somewhat higher frequencies, of about the given power.
std::function<double(double)> noise(double rms) {
  return [rms, random = Random(1), a = 0.0, b = 0.0, c = 0.0](double) mutable {
    a += 0.3 * (random() / 1073741824.0 - 1 - a);
    b += 0.3 * (a - b);
    c += 0.3 * (b - c);
    return c * rms / 0.151;
  };
}

TEST(ModulatorOverload, LoudSignalsNeverLoseLock) {
  std::vector<std::pair<const char*, std::function<double(double)>>> signals = {
      {"two high sines", [](double t) { return 0.35355 * (wave(19000, t) + wave(20000, t)); }},
      {"60 Hz and 7 kHz, 4 to 1",
       [](double t) { return 0.7071 * (0.8 * wave(60, t) + 0.2 * wave(7000, t)); }},
      {"square wave", [](double t) { return 0.7071 * square(1000, t); }},
      {"fast square wave", [](double t) { return 0.7071 * square(5000, t); }},
      {"louder square wave", [](double t) { return 0.9 * square(997, t); }},
      {"constant", [](double) { return 0.7071; }},
      {"step", [](double t) { return t > 0.1 ? -0.7071 : 0; }},
      {"bursts", [](double t) { return std::fmod(t, 0.01) < 0.005 ? 0.7071 * wave(11000, t) : 0; }},
      {"sine at full modulation", [](double t) { return wave(997, t); }},
      {"high sine at full modulation", [](double t) { return wave(20000, t); }},
      {"sine beyond", [](double t) { return 1.5 * wave(5000, t); }},
      {"noise", noise(0.25)},
      {"loud noise", noise(0.35)},
      {"limited noise", noise(0.7)}};
  for (double hz : {20.0, 313.0, 997.0, 2500.0, 8000.0, 14000.0, 20000.0}) {
    signals.emplace_back("sine", [hz](double t) { return 0.7071 * wave(hz, t); });
  }
  for (const auto& [name, signal] : signals) {
    Samples in(kSecond / 2);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = signal(static_cast<double>(i) / kSecond);
    for (ModulatorGrade grade : kGrades) {
      EXPECT_EQ(modulate({grade}, in).overloads[0], 0u)
          << name << ", grade " << static_cast<int>(grade);
    }
  }
  for (double hz : {997.0, 20000.0}) {
    for (const auto& [rate, amplitude] : {std::pair(256, 0.79), std::pair(512, 0.83)}) {
      const Samples in = faded_sine(hz, amplitude, kSecond, rate);
      EXPECT_EQ(modulate({kGrades[0], rate}, in).overloads[0], 0u) << hz << " Hz, DSD" << rate;
    }
  }
}

TEST(ModulatorOverload, LimiterIsContinuousOddAndBounded) {
  const InputLimiter limiter{0.7075, 0.72};
  EXPECT_EQ(limiter(0.7075), 0.7075);
  EXPECT_EQ(limiter(-0.3), -0.3);
  double last = 0.7;
  for (double x = 0.7; x < 0.8; x += 1e-5) {
    EXPECT_GE(limiter(x), last);
    EXPECT_LE(limiter(x), last + 1.0001e-5);
    EXPECT_EQ(limiter(-x), -limiter(x));
    last = limiter(x);
  }
  EXPECT_EQ(limiter(kInfinity), 0.72);
  EXPECT_EQ(limiter(-1e300), -0.72);
  EXPECT_EQ(limiter(kNan), 0.0);
}

// The lower audible band, sampled now and then. The filter rings for 1.3 ms to either side.
std::vector<double> audible(const Bytes& bytes, std::size_t step, int oversampling) {
  const double rate_hz = dsd_rate(oversampling);
  return testing::decimate(bytes, step, 15000 / rate_hz, 20000 / rate_hz);
}

// Everything absurd for 5 ms in the middle of a sine. 2 ms later the audible band must be as if
// nothing had happened.
TEST(ModulatorOverload, RecoversWithinTwoMilliseconds) {
  Random random(9);
  const auto noise = [&random] { return random() / 1073741824.0 - 1; };
  const std::vector<std::pair<const char*, std::function<double(int)>>> absurd = {
      {"no numbers", [](int) { return kNan; }},
      {"infinity", [](int) { return kInfinity; }},
      {"both infinities", [](int i) { return i / 3 % 2 == 0 ? kInfinity : -kInfinity; }},
      {"huge", [](int i) { return i / 50 % 2 == 0 ? 1e300 : -1e300; }},
      {"huge noise", [&](int) { return 1e3 * noise(); }},
      {"all at once",
       [&](int i) { return i % 4 == 0   ? kNan
                           : i % 4 == 1 ? kInfinity
                                        : 1e9 * noise(); }},
      {"loud at 50 kHz", [](int i) { return 10 * wave(50000, i / 352800.0); }},
      {"loud at 75 kHz", [](int i) { return 10 * wave(75000, i / 352800.0); }},
      {"full scale", [](int) { return 1.0; }}};
  constexpr std::size_t kBurst = 20000, kLength = 1764, kTwoMs = 706;
  std::uint64_t losses = 0;
  for (const ModulatorConfig& config :
       {ModulatorConfig{kGrades[0], 64}, ModulatorConfig{kGrades[1], 64},
        ModulatorConfig{kGrades[2], 64}, ModulatorConfig{kGrades[0], 256},
        ModulatorConfig{kGrades[0], 512}}) {
    const Samples sane = faded_sine(997, 0.5, 40000, config.oversampling);
    const std::size_t scale = static_cast<std::size_t>(config.oversampling) / 64;
    const std::size_t step = 256 * scale;
    const auto decoded = [&](const Samples& in, std::uint64_t& overloads) {
      const Modulated made = modulate(config, in);
      overloads += made.overloads[0];
      return audible(made.bytes[0], step, config.oversampling);
    };
    std::uint64_t none = 0;
    const std::vector<double> expected = decoded(sane, none);
    EXPECT_EQ(none, 0u);
    for (const auto& [name, burst] : absurd) {
      Samples in = sane;
      for (std::size_t i = 0; i < kLength; ++i) in[kBurst + i] = burst(static_cast<int>(i));
      const std::vector<double> samples = decoded(in, losses);
      // Sample n sees the bits from n x step on.
      const std::size_t clean = (8 * (kBurst + kLength) + 8 * kTwoMs * scale) / step + 1;
      ASSERT_LT(clean + 20, samples.size());
      double worst = 0;
      for (std::size_t i = clean; i < samples.size(); ++i) {
        worst = std::max(worst, std::abs(samples[i] - expected[i]));
      }
      EXPECT_LE(20 * std::log10(worst), -133)
          << name << ", DSD" << config.oversampling << ", grade " << static_cast<int>(config.grade);
    }
  }
  EXPECT_GT(losses, 20u) << "the bursts no longer reach the recovery";
}

// The limiter lets nothing through that throws eight paths out of lock for long, so their recovery
// is shown on the kernel itself.
TEST(ModulatorOverload, SearchesCatchUp) {
  for (ModulatorGrade grade : {ModulatorGrade::kHigh, ModulatorGrade::kBest}) {
    const ShaperDesign& shaper = shaper_design(grade, 64);
    PathSearchShape shape;
    shape.paths = static_cast<unsigned>(search_paths(grade, 64));
    for (int i = 0; i < kSearchOrder; ++i) {
      const double unit = i == 0 ? kChargeUnit : 1;
      shape.weight[i] = static_cast<float>(shaper.c[i] * unit);
      shape.bound[i] = static_cast<float>(shaper.bound[i] / std::abs(shaper.c[i]) / unit);
      if (i % 2 == 0) shape.feedback[i / 2] = static_cast<float>(shaper.g[i / 2] / unit);
    }
    shape.first_two = static_cast<float>(shaper.c[0] + shaper.c[1]);
    constexpr std::size_t kWords = 20000;
    std::vector<std::int32_t> values(32 * kWords + 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const bool over = i > 200000 && i < 200500;
      values[i] = static_cast<std::int32_t>((over ? 1.3 : 0.25) / kChargeUnit);
    }
    const std::vector<std::int32_t> zeros(values.size());
    Bytes expected;
    for (std::uint32_t mask : {0u, ~0u}) {
      const std::int32_t* const in[2] = {values.data(), zeros.data()};
      PathSearchState states[2] = {path_search_start(shape.paths, in)};
      if (shape.paths == 8) states[1] = path_search_start(shape.paths, in + 1);
      Bytes left(4 * kWords), right(4 * kWords);
      std::uint8_t* const out[2] = {left.data(), right.data()};
      best_build<PathSearchVariant>(mask).run(shape, states, in, kWords, out);
      EXPECT_GT(states[0].overloads[0], 0u);
      EXPECT_EQ(states[0].overloads[1] + states[1].overloads[0], 0u);
      if (mask == 0) expected = left;
      EXPECT_EQ(left, expected);
      // The band 2 ms (5645 bits) and the search's delay later.
      const std::vector<double> samples = audible(left, 256, 64);
      for (std::size_t i = (200500 + 5645 + 512) / 256 + 1; i < samples.size(); ++i) {
        ASSERT_NEAR(samples[i], 0.25, 1e-6) << i;
      }
    }
  }
}

}  // namespace
}  // namespace corvin::studio
