// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The figures that the decoder promises, for every pair of rates, and the committed table of them.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "tests/studio/plan_response.h"
#include "tests/support/committed_table.h"

namespace corvin::studio {
namespace {

constexpr double kRounding = -158;

struct Row {
  DecodePlanConfig config;
  PlanResponse::Figures figures;
  std::size_t steep_taps;
};

std::vector<Row> all_rows() {
  std::vector<Row> rows;
  const auto add = [&](const DecodePlanConfig& config) {
    const auto plan = make_decode_plan(config);
    ASSERT_TRUE(plan.has_value()) << config.dsd_rate << " to " << config.pcm_rate;
    rows.push_back({plan->config, PlanResponse(*plan).figures(), plan->steep_taps});
  };
  for (std::uint32_t dsd_base : {44100u, 48000u}) {
    for (std::uint32_t dsd = 64; dsd <= 512; dsd *= 2) {
      for (std::uint32_t pcm_base : {44100u, 48000u}) {
        for (std::uint32_t pcm = 1; pcm <= 16; pcm *= 2) {
          DecodePlanConfig config;
          config.dsd_rate = dsd_base * dsd;
          config.pcm_rate = pcm_base * pcm;
          add(config);
        }
      }
    }
  }
  DecodePlanConfig config;
  for (double pass_hz : {0.9 * 22050, 20000.0}) {
    config.pass_hz = pass_hz;
    add(config);
  }
  config = {};
  config.pcm_rate = 352800;
  config.pass_hz = 40000;
  config.stop_hz = 60000;
  add(config);
  for (std::uint32_t pcm_rate : {44100u, 48000u}) {
    config = {};
    config.pcm_rate = pcm_rate;
    config.phase = Phase::kMinimum;
    add(config);
  }
  config.dsd_rate = 3072000;
  config.pcm_rate = 44100;
  add(config);
  return rows;
}

std::string table(const std::vector<Row>& rows) {
  std::string text = "dsd_rate,pcm_rate,phase,pass_hz,stop_hz,ripple_db,stop_db,alias_db,taps\n";
  for (const Row& row : rows) {
    char line[160];
    std::snprintf(line, sizeof line, "%u,%u,%s,%.1f,%.1f,%.7f,%.1f,%.1f,%zu\n", row.config.dsd_rate,
                  row.config.pcm_rate, row.config.phase == Phase::kMinimum ? "minimum" : "linear",
                  row.config.pass_hz, row.config.stop_hz, row.figures.ripple_db,
                  row.figures.stop_db, row.figures.alias_db, row.steep_taps);
    text += line;
  }
  return text;
}

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
  const std::vector<Row> rows = all_rows();
  for (const Row& row : rows) {
    const auto name =
        std::to_string(row.config.dsd_rate) + " to " + std::to_string(row.config.pcm_rate);
    EXPECT_LE(row.figures.ripple_db, row.config.phase == Phase::kMinimum ? 1e-5 : 1e-6) << name;
    EXPECT_LE(row.figures.stop_db, -150) << name;
    EXPECT_LE(row.figures.alias_db, -150) << name;
  }
  testing::expect_committed(table(rows), "decode.csv", kRounding);
}

TEST(Quality, CurvesAreTheCommittedOnes) {
  testing::expect_committed(curves(), "decode_curves.csv", kRounding);
}

}  // namespace
}  // namespace corvin::studio
