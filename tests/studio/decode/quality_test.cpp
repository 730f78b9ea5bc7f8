// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The figures that the decoder promises, for every pair of rates, and the committed table of them.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "tests/support/committed_table.h"
#include "tests/support/plan_response.h"

namespace corvin::studio {
namespace {

constexpr double kRounding = -158;

std::string curves() {
  std::string text = "x,44100_linear_db,48000_linear_db,44100_90_percent_db,44100_minimum_db\n";
  DecodePlanConfig configs[4];
  configs[1].pcm_rate = 48000;
  configs[2].pass_hz = 0.9 * 22050;
  configs[3].phase = Phase::kMinimum;
  std::vector<DecodePlan> plans;
  for (const DecodePlanConfig& config : configs) plans.push_back(*make_decode_plan(config));
  std::vector<PlanResponse> responses(plans.begin(), plans.end());
  for (int i = 0; i <= 600; ++i) {
    // In half PCM rates.
    const double x = i * 0.0025;
    char cell[40];
    std::snprintf(cell, sizeof cell, "%.4f", x);
    text += cell;
    for (std::size_t k = 0; k < plans.size(); ++k) {
      const double gain = responses[k].gain(x * plans[k].config.pcm_rate / 2);
      const double db = 20 * std::log10(std::max(gain, 1e-9));
      std::snprintf(cell, sizeof cell, ",%.1f", std::fabs(db) < 0.05 ? 0.0 : db);
      text += cell;
    }
    text += '\n';
  }
  return text;
}

TEST(Quality, EveryPairKeepsItsPromise) {
  std::string text = "dsd_rate,pcm_rate,phase,pass_hz,stop_hz,ripple_db,stop_db,alias_db,taps\n";
  const auto add = [&](std::uint32_t dsd_rate, std::uint32_t pcm_rate, Phase phase, double pass_hz,
                       double stop_hz) {
    const auto plan = make_decode_plan({dsd_rate, pcm_rate, pass_hz, stop_hz, phase});
    const bool minimum = phase == Phase::kMinimum;
    ASSERT_TRUE(plan.has_value()) << dsd_rate << " to " << pcm_rate;
    const auto [ripple_db, stop_db, alias_db] = PlanResponse(*plan).figures();
    EXPECT_LE(ripple_db, minimum ? 1e-5 : 1e-6) << dsd_rate << " to " << pcm_rate;
    EXPECT_LE(stop_db, -150) << dsd_rate << " to " << pcm_rate;
    EXPECT_LE(alias_db, -150) << dsd_rate << " to " << pcm_rate;
    char line[160];
    std::snprintf(line, sizeof line, "%u,%u,%s,%.1f,%.1f,%.7f,%.1f,%.1f,%zu\n", dsd_rate, pcm_rate,
                  minimum ? "minimum" : "linear", plan->config.pass_hz, plan->config.stop_hz,
                  ripple_db, stop_db, alias_db, plan->steep_taps);
    text += line;
  };
  for (std::uint32_t dsd_base : {44100u, 48000u}) {
    for (std::uint32_t dsd = 64; dsd <= 512; dsd *= 2) {
      for (std::uint32_t pcm_base : {44100u, 48000u}) {
        for (std::uint32_t pcm = 1; pcm <= 16; pcm *= 2) {
          add(dsd_base * dsd, pcm_base * pcm, Phase::kLinear, 0, pcm_base * pcm / 2.0);
        }
      }
    }
  }
  for (double pass_hz : {0.9 * 22050, 20000.0}) add(2822400, 44100, Phase::kLinear, pass_hz, 0);
  add(2822400, 352800, Phase::kLinear, 40000, 60000);
  for (std::uint32_t pcm_rate : {44100u, 48000u}) add(2822400, pcm_rate, Phase::kMinimum, 0, 0);
  add(3072000, 44100, Phase::kMinimum, 0, 0);
  // The band that is passed unless another is asked for, where that is not the full one: below the
  // noise of the stream's modulator, at every PCM rate that reaches it.
  for (std::uint32_t dsd_rate : {2822400u, 3072000u, 5644800u, 6144000u}) {
    for (std::uint32_t pcm = dsd_rate < 5000000 ? 2 : 4; pcm <= 16; pcm *= 2) {
      for (std::uint32_t base : {44100u, 48000u}) {
        add(dsd_rate, base * pcm, Phase::kLinear, 0, 0);
      }
    }
  }
  testing::expect_committed(text, "decode.csv", kRounding);
}

TEST(Quality, CurvesAreTheCommittedOnes) {
  testing::expect_committed(curves(), "decode_curves.csv", kRounding);
}

}  // namespace
}  // namespace corvin::studio
