// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert: finds out from the inputs and the kinds of their outputs which way each conversion
// goes, and goes it, several at once.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <map>
#include <memory>

#include "cli/batch/jobs.h"
#include "cli/commands/commands.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"
#include "cli/commands/convert_requests.h"
#include "cli/files/output_file.h"
#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

using Plan = std::vector<PlannedConversion>;

// More do not pay within one conversion: reading and writing are the limit by then.
constexpr unsigned kMostThreads = 8;

/** How many conversions run at once and how many threads each has. */
struct Split {
  unsigned jobs;
  uint32_t threads;
};

Split split_machine(const ConvertOptions& options, size_t conversions) {
  const auto most = static_cast<unsigned>(std::clamp<size_t>(conversions, 1, 256));
  const unsigned jobs = std::min(options.jobs ? options.jobs : processors(), most);
  const unsigned each = processors() / jobs;
  return {.jobs = jobs, .threads = each < 2 ? 0 : std::min(each, kMostThreads)};
}

// ---- Gain -----------------------------------------------------------------------------------

// What is left to full scale, as converters and coders behind may add a little.
constexpr double kHighestPeakDb = -0.1;

// Down to a hundredth, so that the summary tells all of it.
double gain_for(double peak) {
  if (!(peak > 0)) return 0;
  const double db = kHighestPeakDb - 20 * std::log10(peak);
  return std::clamp(std::floor(100 * db) / 100, -120.0, 60.0);
}

std::string group_of(const ConvertOptions& options, const PlannedConversion& planned) {
  const std::string& path = planned.input.path;
  switch (options.gain_group) {
    case GainGroup::kAll:
      return "";
    case GainGroup::kDirectory:
      return path.substr(0, path.rfind('/') + 1);
    case GainGroup::kFile:
      break;
  }
  return path;
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

// The gain of each conversion by --gain auto. An input whose peak cannot be found fails here.
std::vector<double> gains_of(const ConvertOptions& options, Plan& plan, const Split& split) {
  std::vector<double> gains(plan.size(), 0.0);
  if (!options.gain || options.gain->db) return gains;
  std::vector<double> peaks(plan.size(), 0.0);
  std::vector<Job> jobs;
  for (size_t i = 0; i < plan.size(); ++i)
    jobs.push_back([&, i] {
      if (plan[i].failure) return;
      try {
        peaks[i] = peak_of(options, plan[i], split.threads);
      } catch (const Failure& failure) {
        plan[i].failure = failure;
      }
    });
  run_jobs(jobs, split.jobs);
  std::map<std::string, double> loudest;
  for (size_t i = 0; i < plan.size(); ++i) {
    double& peak = loudest[group_of(options, plan[i])];
    peak = std::max(peak, peaks[i]);
  }
  for (size_t i = 0; i < plan.size(); ++i) gains[i] = gain_for(loudest[group_of(options, plan[i])]);
  return gains;
}

// ---- Conversions ----------------------------------------------------------------------------

void convert_classic(const ConvertOptions& options, const PlannedConversion& planned) {
  if (const auto dsd = read_dsd_headers(planned.input.path)) {
    convert_dsd_to_wav_classic(classic_wav_request(options, planned, *dsd), *dsd);
    return;
  }
  PcmInput pcm(planned.input.path);
  convert_pcm_to_dsd_classic(classic_dsd_request(options, planned, pcm), pcm);
}

// Of a recording, the files around one, as far as its filters hear, and where it stands in the whole.
void place_in_recording(const Plan& plan, size_t index, PcmRequest& request) {
  // A second is many times what any filter spans.
  const uint64_t heard = plan[index].rate_hz;
  for (size_t i = index; i > 0 && plan[i - 1].goes_on; --i) {
    if (request.settings.first_sample < heard) request.previous.push_back(plan[i - 1].input.path);
    request.settings.first_sample += plan[i - 1].samples;
  }
  uint64_t behind = 0;
  for (size_t i = index; plan[i].goes_on && behind < heard; behind += plan[++i].samples)
    request.next.push_back(plan[i + 1].input.path);
}

void convert_dsd(const ConvertOptions& options, const Plan& plan, size_t index,
                 const Share& share) {
  const PlannedConversion& planned = plan[index];
  DsdInput dsd = DsdInput::open_dsd(planned.input.path);
  if (is_dsd(planned.kind)) {
    convert_dsd_to_dsd(dsd_request(options, planned, dsd, share), dsd);
    return;
  }
  PcmRequest request = pcm_request(options, planned, dsd, share);
  place_in_recording(plan, index, request);
  convert_dsd_to_pcm(request, dsd);
}

// The conversions from `begin` to `end`, which are one recording when there are several.
void convert_pcm(const ConvertOptions& options, const Plan& plan, size_t begin, size_t end,
                 const Share& share) {
  std::vector<PcmInput> inputs;
  std::vector<DsdRequest> requests;
  for (size_t i = begin; i < end; ++i) {
    inputs.emplace_back(plan[i].input.path);
    requests.push_back(dsd_request(options, plan[i], inputs.back(), share));
  }
  convert_pcm_to_dsd(requests, inputs);
}

// PCM that goes on is one run of the modulator, so one job makes all of its files.
size_t end_of_job(const Plan& plan, size_t begin) {
  size_t end = begin + 1;
  if (!plan[begin].is_dsd)
    while (plan[end - 1].goes_on) ++end;
  return end;
}

ExitCode run(const ConvertOptions& options) {
  Plan plan = plan_conversions(options);
  const Split split = split_machine(options, plan.size());
  const std::vector<double> gains = gains_of(options, plan, split);
  std::vector<Job> jobs;
  for (size_t begin = 0, end; begin < plan.size(); begin = end) {
    end = end_of_job(plan, begin);
    jobs.push_back([&, begin, end] {
      if (plan[begin].failure) throw Failure(*plan[begin].failure);
      if (!options.directory.empty()) make_directory_of(plan[begin].output);
      if (options.engine == Engine::kClassic) return convert_classic(options, plan[begin]);
      const Share share{.threads = split.threads, .gain_db = gains[begin]};
      if (plan[begin].is_dsd)
        convert_dsd(options, plan, begin, share);
      else
        convert_pcm(options, plan, begin, end, share);
    });
  }
  const std::vector<ExitCode> codes = run_jobs(jobs, split.jobs);
  note_failures(codes);
  return exit_code_of(codes);
}

}  // namespace

void add_convert_command(CLI::App& app, int& exit_code) {
  CLI::App* command =
      app.add_subcommand("convert", "Convert DSD to PCM, PCM to DSD, or DSD to DSD");
  auto options = std::make_shared<ConvertOptions>();
  add_convert_options(*command, *options);
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
