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
#include "tests/studio_modulator/bit_spectrum.h"
#include "tests/studio_modulator/streams.h"

namespace corvin::studio {
namespace {

using testing::Bytes;
using testing::dsd_rate;
using testing::modulate;
using testing::Modulated;
using testing::Samples;
using testing::sine;

constexpr ModulatorGrade kGrades[] = {ModulatorGrade::kStandard, ModulatorGrade::kHigh,
                                      ModulatorGrade::kBest};
constexpr std::size_t kSecond = 352800;  // samples at DSD64

ModulatorConfig config_for(ModulatorGrade grade, int oversampling = 64) {
  ModulatorConfig config;
  config.grade = grade;
  config.oversampling = oversampling;
  return config;
}

Samples signal(std::size_t count, const std::function<double(double)>& at_second) {
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = at_second(static_cast<double>(i) / static_cast<double>(kSecond));
  }
  return samples;
}

double wave(double frequency_hz, double t) {
  return std::sin(2 * std::numbers::pi * frequency_hz * t);
}

// A square wave as a band-limiting filter leaves it.
double square(double frequency_hz, double t) {
  double sum = 0;
  for (int k = 1; k * frequency_hz < 20000; k += 2) sum += wave(k * frequency_hz, t) / k;
  return sum * 4 / std::numbers::pi;
}

Samples noise(std::size_t count, double rms) {
  Samples samples(count);
  std::uint32_t state = 1;
  double a = 0, b = 0, c = 0, power = 0;
  for (double& sample : samples) {
    state = state * 1664525u + 1013904223u;
    a += 0.3 * (static_cast<std::int32_t>(state) * 0x1p-31 - a);
    b += 0.3 * (a - b);
    c += 0.3 * (b - c);
    sample = c;
    power += c * c;
  }
  for (double& sample : samples) sample *= rms / std::sqrt(power / static_cast<double>(count));
  return samples;
}

TEST(ModulatorOverload, LoudSinesNeverLoseLock) {
  for (ModulatorGrade grade : kGrades) {
    for (double frequency_hz : {20.0, 313.0, 997.0, 2500.0, 8000.0, 14000.0, 20000.0}) {
      const bool quick = grade == ModulatorGrade::kStandard;
      const Samples in = sine(frequency_hz, 0.7071, quick ? kSecond : kSecond / 4);
      EXPECT_EQ(modulate(config_for(grade), in).overloads[0], 0u) << frequency_hz;
    }
  }
  for (double frequency_hz : {997.0, 20000.0}) {
    EXPECT_EQ(
        modulate(config_for(kGrades[0], 256), sine(frequency_hz, 0.79, kSecond, 256)).overloads[0],
        0u);
    EXPECT_EQ(
        modulate(config_for(kGrades[0], 512), sine(frequency_hz, 0.83, kSecond, 512)).overloads[0],
        0u);
  }
}

TEST(ModulatorOverload, NastySignalsThatNeverLoseLock) {
  const std::size_t count = kSecond / 2;
  const std::vector<std::pair<const char*, Samples>> signals = {
      {"two high sines",
       signal(count, [](double t) { return 0.35355 * (wave(19000, t) + wave(20000, t)); })},
      {"60 Hz and 7 kHz, 4 to 1",
       signal(count, [](double t) { return 0.7071 * (0.8 * wave(60, t) + 0.2 * wave(7000, t)); })},
      {"square wave", signal(count, [](double t) { return 0.7071 * square(1000, t); })},
      {"fast square wave", signal(count, [](double t) { return 0.7071 * square(5000, t); })},
      {"louder square wave", signal(count, [](double t) { return 0.9 * square(997, t); })},
      {"constant", signal(count, [](double) { return 0.7071; })},
      {"step", signal(count, [](double t) { return t > 0.1 ? -0.7071 : 0; })},
      {"bursts",
       signal(count,
              [](double t) { return std::fmod(t, 0.01) < 0.005 ? 0.7071 * wave(11000, t) : 0; })},
      {"sine at full modulation", signal(count, [](double t) { return wave(997, t); })},
      {"high sine at full modulation", signal(count, [](double t) { return wave(20000, t); })},
      {"sine beyond", signal(count, [](double t) { return 1.5 * wave(5000, t); })},
      {"noise", noise(count, 0.25)},
      {"loud noise", noise(count, 0.35)},
      {"limited noise", noise(count, 0.7)}};
  for (ModulatorGrade grade : kGrades) {
    for (const auto& [name, in] : signals) {
      EXPECT_EQ(modulate(config_for(grade), in).overloads[0], 0u)
          << name << ", grade " << static_cast<int>(grade);
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
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(limiter(infinity), 0.72);
  EXPECT_EQ(limiter(-1e300), -0.72);
  EXPECT_EQ(limiter(std::numeric_limits<double>::quiet_NaN()), 0.0);
}

// The lower audible band, sampled now and then. The filter rings for 1.3 ms to either side.
std::pair<std::size_t, std::vector<double>> audible(const Bytes& bytes, std::size_t step,
                                                    int oversampling) {
  const double rate_hz = dsd_rate(oversampling);
  return testing::decimate(bytes, step, 15000 / rate_hz, 20000 / rate_hz);
}

// Everything absurd for 5 ms in the middle of a sine. 2 ms later the audible band must be as if
// nothing had happened.
TEST(ModulatorOverload, RecoversWithinTwoMilliseconds) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::uint32_t state = 9;
  const auto random = [&state] {
    state = state * 1664525u + 1013904223u;
    return static_cast<std::int32_t>(state) * 0x1p-31;
  };
  const std::vector<std::pair<const char*, std::function<double(int)>>> absurd = {
      {"no numbers", [&](int) { return nan; }},
      {"infinity", [&](int) { return infinity; }},
      {"both infinities", [&](int i) { return i / 3 % 2 == 0 ? infinity : -infinity; }},
      {"huge", [&](int i) { return i / 50 % 2 == 0 ? 1e300 : -1e300; }},
      {"huge noise", [&](int) { return 1e3 * random(); }},
      {"all at once",
       [&](int i) { return i % 4 == 0   ? nan
                           : i % 4 == 1 ? infinity
                                        : 1e9 * random(); }},
      {"loud at 50 kHz", [&](int i) { return 10 * wave(50000, i / 352800.0); }},
      {"loud at 75 kHz", [&](int i) { return 10 * wave(75000, i / 352800.0); }},
      {"full scale", [&](int) { return 1.0; }}};
  constexpr std::size_t kBurst = 20000, kLength = 1764, kTwoMs = 706;
  std::uint64_t losses = 0;
  for (int oversampling : {64, 256, 512}) {
    for (ModulatorGrade grade : kGrades) {
      if (oversampling > 64 && grade != ModulatorGrade::kStandard) continue;
      const Samples sane = sine(997, 0.5, 40000, oversampling);
      const std::size_t scale = static_cast<std::size_t>(oversampling) / 64;
      const std::size_t step = 256 * scale;
      const auto decoded = [&](const Samples& in, std::uint64_t* overloads) {
        const Modulated made = modulate(config_for(grade, oversampling), in);
        *overloads += made.overloads[0];
        return audible(made.bytes[0], step, oversampling);
      };
      std::uint64_t none = 0;
      const std::vector<double> expected = decoded(sane, &none).second;
      EXPECT_EQ(none, 0u);
      for (const auto& [name, burst] : absurd) {
        Samples in = sane;
        for (std::size_t i = 0; i < kLength; ++i) in[kBurst + i] = burst(static_cast<int>(i));
        const std::vector<double> samples = decoded(in, &losses).second;
        // Sample n sees the bits from n x step on.
        const std::size_t clean = (8 * (kBurst + kLength) + 8 * kTwoMs * scale) / step + 1;
        ASSERT_LT(clean + 20, samples.size());
        double worst = 0;
        for (std::size_t i = clean; i < samples.size(); ++i) {
          worst = std::max(worst, std::abs(samples[i] - expected[i]));
        }
        EXPECT_LE(20 * std::log10(worst), -138)
            << name << ", DSD" << oversampling << ", grade " << static_cast<int>(grade);
      }
    }
  }
  EXPECT_GT(losses, 20u) << "the bursts no longer reach the recovery";
}

// The limiter lets nothing through that throws eight paths out of lock for long, so their recovery
// is shown on the kernel itself.
TEST(ModulatorOverload, SearchesCatchUp) {
  for (ModulatorGrade grade : {ModulatorGrade::kHigh, ModulatorGrade::kBest}) {
    const NoiseShaper& shaper = noise_shaper(grade, 64);
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
      choose_path_search(detected_features() & mask).run(shape, states, in, kWords, out);
      EXPECT_GT(states[0].overloads[0], 0u);
      EXPECT_EQ(states[0].overloads[1] + states[1].overloads[0], 0u);
      if (mask == 0) expected = left;
      EXPECT_EQ(left, expected);
      // The band 2 ms (5645 bits) and the search's delay later.
      const std::vector<double> samples = audible(left, 256, 64).second;
      for (std::size_t i = (200500 + 5645 + 512) / 256 + 1; i < samples.size(); ++i) {
        ASSERT_NEAR(samples[i], 0.25, 1e-6) << i;
      }
    }
  }
}

}  // namespace
}  // namespace corvin::studio
