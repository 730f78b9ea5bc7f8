// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_gain.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "cli/batch/jobs.h"
#include "cli/commands/convert_requests.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

// What is left to full scale, as converters and coders behind may add a little.
constexpr double kHighestPeakDb = -0.1;

// Down to a hundredth, so that the summary tells all of it.
double gain_for(double peak) {
  if (!(peak > 0)) return 0;
  const double db = kHighestPeakDb - 20 * std::log10(peak);
  return std::clamp(std::floor(100 * db) / 100, -120.0, 60.0);
}

double peak_of(const ConvertOptions& options, const PlannedConversion& planned, uint32_t threads) {
  const Share share{.threads = threads};
  if (!planned.is_dsd) {
    PcmInput pcm(planned.input.path);
    return true_peak_of(pcm, feed_config(options, pcm));
  }
  DsdInput dsd = DsdInput::open_dsd(planned.input.path);
  return true_peak_of(peak_request(options, planned, dsd, share), dsd);
}

}  // namespace

std::vector<double> gains_of(const ConvertOptions& options, std::vector<PlannedConversion>& plan,
                             const Split& split) {
  std::vector<double> gains(plan.size(), 0.0);
  if (!options.gain || options.gain->db) return gains;
  // What is skipped counts for the gain of those that share it, lest an album's levels come apart.
  std::set<std::string> groups;
  for (const PlannedConversion& planned : plan)
    if (planned.skipped.empty()) groups.insert(gain_group_of(options, planned));
  std::vector<double> peaks(plan.size(), 0.0);
  std::vector<Job> jobs;
  for (size_t i = 0; i < plan.size(); ++i)
    jobs.push_back([&, i] {
      if (plan[i].failure || !groups.contains(gain_group_of(options, plan[i]))) return;
      try {
        peaks[i] = peak_of(options, plan[i], split.threads);
      } catch (const Failure& failure) {
        plan[i].failure = failure;
      }
    });
  run_jobs(jobs, split.jobs);
  std::map<std::string, double> loudest;
  for (size_t i = 0; i < plan.size(); ++i) {
    double& peak = loudest[gain_group_of(options, plan[i])];
    peak = std::max(peak, peaks[i]);
  }
  for (size_t i = 0; i < plan.size(); ++i)
    gains[i] = gain_for(loudest[gain_group_of(options, plan[i])]);
  return gains;
}

}  // namespace corvin::cli
