// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The way up to the modulator's rate: every build the same bits, the right samples at the right
// time.

#include <gtest/gtest.h>

#include <cmath>

#include "studio/encode/up_sampler.h"
#include "tests/support/filter_response.h"
#include "tests/support/kernel_builds.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

struct Pair {
  std::uint32_t pcm, dsd;
};
// Every ratio of the transform, every factor of the interpolation.
constexpr Pair kPairs[] = {
    {44100, 2822400},  {48000, 2822400},  {44100, 3072000},  {88200, 2822400},  {96000, 2822400},
    {176400, 2822400}, {192000, 2822400}, {352800, 2822400}, {384000, 2822400}, {705600, 2822400},
    {768000, 2822400}, {705600, 3072000}, {44100, 5644800},  {48000, 11289600}, {44100, 22579200}};

EncodePlan plan_of(const Pair& pair, bool low_latency = false) {
  EncodePlanConfig config;
  config.low_latency = low_latency;
  config.pcm_rate = pair.pcm;
  config.dsd_rate = pair.dsd;
  return *make_encode_plan(config);
}

TEST(Interpolate, EveryBuildIsTheDefiningSum) {
  Random random(20);
  const std::vector<Kernels> builds = all_builds();
  for (std::size_t columns : {2u, 4u, 5u, 8u, 16u}) {
    for (std::size_t phases : {1u, 2u, 4u, 8u, 16u}) {
      for (std::size_t depth : {1u, 5u, 8u}) {
        for (std::size_t count : {1u, 3u, 8u, 13u}) {
          AlignedArray<double> rows((count + depth - 1) * columns);
          for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = random() / 1e9 - 1;
          std::vector<double> taps(depth * phases);
          for (double& tap : taps) tap = random() / 1e9 - 1;
          // One number beyond each column guards it; column 1 is idle.
          const std::size_t stride = count * phases + 1;
          std::vector<double> expected(columns * stride, 99.0);
          for (std::size_t i = 0; i < expected.size(); ++i) {
            const std::size_t column = i / stride, k = i % stride;
            if (column == 1 || k + 1 == stride) continue;
            expected[i] = 0;
            for (std::size_t t = 0; t < depth; ++t) {
              expected[i] +=
                  taps[t * phases + k % phases] * rows[(k / phases + t) * columns + column];
            }
          }
          for (const Kernels& kernels : builds) {
            std::vector<double> out(expected.size(), 99.0);
            std::vector<double*> places;
            for (std::size_t c = 0; c < columns; ++c) places.push_back(&out[c * stride]);
            places[1] = nullptr;
            kernels.interpolate->run(rows.data(), columns, taps.data(), phases, depth, count,
                                     places.data());
            EXPECT_EQ(out, expected)
                << kernels.interpolate->set.name << ' ' << columns << ' ' << phases;
          }
        }
      }
    }
  }
}

TEST(UpSampler, ItemsComeOutTheSameInEveryLaneOfEveryBuild) {
  Random random(21);
  for (const Pair& pair : kPairs) {
    const EncodePlan plan = plan_of(pair);
    constexpr std::size_t kItems = 8;
    std::vector<double> in(kItems * item_frames(plan));
    for (double& value : in) value = random() / 1.1e9 - 1;
    std::vector<double> expected;
    for (const Kernels& kernels : all_builds()) {
      UpSampler sampler(plan, kernels);
      const std::size_t stride = item_samples(plan) + 1;
      std::vector<double> out(kItems * stride, 99.0);
      for (std::size_t item = 0; item < kItems;) {
        // A group that fills the lanes, then small ones, so that idle lanes occur.
        const double* from[kItems];
        double* to[kItems];
        const std::size_t group = std::min(sampler.items_at_once(), item == 0 ? kItems : 3);
        std::size_t count = 0;
        for (; count < group && item < kItems; ++count, ++item) {
          from[count] = &in[item * item_frames(plan)];
          to[count] = &out[item * stride];
        }
        sampler.run(from, to, count);
      }
      for (std::size_t item = 1; item <= kItems; ++item) EXPECT_EQ(out[item * stride - 1], 99.0);
      if (expected.empty()) expected = out;
      EXPECT_TRUE(out == expected)
          << kernels.spectral->set.name << ", " << pair.pcm << " to " << pair.dsd;
    }
  }
}

// A single frame: in minimum phase nothing comes before it but for the short filter's reach, and
// the energy right behind it; in linear phase as much before as behind.
TEST(UpSampler, MinimumPhaseStartsAtTheEventWithTheSameLevel) {
  for (const Pair& pair : {Pair{44100, 2822400}, Pair{48000, 2822400}, Pair{352800, 2822400}}) {
    double level[2];
    for (const Phase phase : {Phase::kLinear, Phase::kMinimum}) {
      EncodePlanConfig config;
      config.pcm_rate = pair.pcm;
      config.dsd_rate = pair.dsd;
      config.phase = phase;
      const EncodePlan plan = *make_encode_plan(config);
      const double samples_per_frame = pair.dsd / 8.0 / pair.pcm;
      const std::size_t event = plan.hop_frames;  // in the middle, at the seam of two spans
      std::vector<double> in(item_frames(plan));
      in[plan.lead_frames + event] = 1;
      UpSampler sampler(plan, choose_kernels(0));
      std::vector<double> out(item_samples(plan));
      const double* from[] = {in.data()};
      double* to[] = {out.data()};
      sampler.run(from, to, 1);
      double before = 0, energy = 0, moment = 0, sum = 0;
      for (std::size_t k = 0; k < out.size(); ++k) {
        const double seconds =
            (static_cast<double>(k) - static_cast<double>(event) * samples_per_frame) * 8 /
            pair.dsd;
        const double power = out[k] * out[k];
        if (seconds < -4.0 / std::min(pair.pcm, pair.dsd / 8)) before += power;
        energy += power;
        moment += power * seconds;
        sum += out[k];
      }
      level[phase == Phase::kMinimum] = sum / samples_per_frame;
      if (phase == Phase::kMinimum) {
        EXPECT_LT(before / energy, 1e-12) << pair.pcm;
        EXPECT_GT(moment / energy, 0) << pair.pcm;
        EXPECT_LT(moment / energy, 0.3e-3) << pair.pcm;
      } else {
        EXPECT_GT(before / energy, 1e-4) << pair.pcm;
        EXPECT_NEAR(moment / energy, 0, 1e-8) << pair.pcm;
      }
    }
    EXPECT_NEAR(level[0], 0.5, 1e-6) << pair.pcm;
    EXPECT_NEAR(level[1], level[0], 1e-6) << pair.pcm;
  }
}

// Sound near both ends of the band against the sum that defines it: frames times the continuous
// kernel that the bins describe, then the short filter's taps.
TEST(UpSampler, BlocksAreADirectConvolution) {
  constexpr Pair kSome[] = {
      {44100, 2822400}, {48000, 5644800}, {352800, 3072000}, {705600, 2822400}};
  for (std::size_t i = 0; i < 2 * std::size(kSome); ++i) {
    const Pair& pair = kSome[i / 2];
    const EncodePlan plan = plan_of(pair, i % 2 != 0);
    const auto factor = static_cast<double>(plan.factor());
    const double frames_per_row = static_cast<double>(plan.shape.forward.points) /
                                  static_cast<double>(plan.shape.inverse.points);
    const auto sound = [&](double frame) {
      return 0.6 * std::sin(2 * M_PI * 0.02 * frame) +
             0.4 * std::sin(2 * M_PI * 0.98 * plan.config.pass_hz / pair.pcm * frame);
    };
    std::vector<double> in(item_frames(plan));
    for (std::size_t k = 0; k < in.size(); ++k) in[k] = sound(static_cast<double>(k));
    // The middle of the short filter, in rows before the last one that it takes.
    const double middle = plan.boxcars.order() * (factor - 1) / 2 / factor;
    const auto reference = [&](std::size_t index) {
      double sum = 0;
      const double reach = static_cast<double>(plan.steep_taps / 2 + 60);
      for (std::size_t t = 0; t < plan.depth; ++t) {
        const double row = static_cast<double>(index / plan.factor() + t) -
                           static_cast<double>(plan.depth - 1) + middle;
        const double at = static_cast<double>(plan.lead_frames) + row * frames_per_row;
        double value = 0;
        for (double frame = std::ceil(at - reach); frame <= at + reach; ++frame) {
          value += sound(frame) * kernel_at(plan.shape, at - frame);
        }
        sum += plan.taps[t * plan.factor() + index % plan.factor()] * value;
      }
      return sum;
    };
    UpSampler sampler(plan, choose_kernels(0));
    std::vector<double> out(item_samples(plan));
    const double* from[] = {in.data()};
    double* to[] = {out.data()};
    sampler.run(from, to, 1);
    double error = 0;
    // The first and last samples, and both sides of the seam.
    const std::size_t hop = plan.hop_samples;
    const std::size_t places[] = {0, 1, hop - 1, hop, 2 * hop - 1};
    for (std::size_t place : places) error += std::pow(out[place] - reference(place), 2);
    // The last bin of an odd number of points lies half a bin below the cut, where the filter is not
    // quite closed: that rings to -182 dB.
    const double limit = plan.shape.forward.points % 2 != 0 ? -180 : -200;
    EXPECT_LT(10 * std::log10(error / std::size(places)), limit) << plan.describe();
  }
}

}  // namespace
}  // namespace corvin::studio
