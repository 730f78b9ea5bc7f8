// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The figures that the decoder promises, for every pair of rates, and the committed table of them.
// The table is written anew to the working directory; copy it to docs/quality after a change that
// is meant, and the difference is what to review.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/studio/plan_response.h"

namespace corvin::studio {
namespace {

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

// Equal words, but for numbers that may differ by one in their last printed place: the tests' own
// cosines are the system's. Figures far below -150 dB are rounding of double and not compared.
void expect_same(const std::string& made, const std::string& name) {
  std::ofstream(name) << made;
  std::ifstream file(std::string(CORVIN_SOURCE_DIR "/docs/quality/") + name);
  ASSERT_TRUE(file) << name;
  std::istringstream now(made);
  for (std::string a, b; std::getline(now, a);) {
    ASSERT_TRUE(std::getline(file, b)) << a;
    std::istringstream cells_a(a);
    std::istringstream cells_b(b);
    for (std::string x, y; std::getline(cells_a, x, ',');) {
      ASSERT_TRUE(std::getline(cells_b, y, ',')) << b;
      if (x == y) continue;
      const double value = std::strtod(x.c_str(), nullptr);
      const bool figure = value != 0 && x.find('.') != std::string::npos;
      const double step = x.find('.') + 2 == x.size() ? 0.1 : 1e-7;
      ASSERT_TRUE(figure && (value < -158 || std::fabs(value - std::stod(y)) < 1.5 * step))
          << a << "\n"
          << b;
    }
  }
  std::string more;
  EXPECT_FALSE(std::getline(file, more)) << more;
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
  expect_same(table(rows), "decode.csv");
}

TEST(Quality, CurvesAreTheCommittedOnes) { expect_same(curves(), "decode_curves.csv"); }

}  // namespace
}  // namespace corvin::studio
