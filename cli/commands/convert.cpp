// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert: finds out from the inputs and the kinds of their outputs which way each conversion
// goes, and goes it, several at once.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>

#include "cli/batch/jobs.h"
#include "cli/batch/manifest.h"
#include "cli/commands/commands.h"
#include "cli/commands/convert_batch.h"
#include "cli/commands/convert_gain.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"
#include "cli/commands/convert_requests.h"
#include "cli/files/output_file.h"
#include "cli/words/failure.h"
#include "cli/words/loudness.h"
#include "cli/words/measures.h"
#include "cli/words/stdout_name.h"

namespace corvin::cli {
namespace {

using Plan = std::vector<PlannedConversion>;

// More do not pay within one conversion: reading and writing are the limit by then.
constexpr unsigned kMostThreads = 8;

Split split_machine(const ConvertOptions& options, size_t conversions) {
  const auto most = static_cast<unsigned>(std::clamp<size_t>(conversions, 1, 256));
  const unsigned jobs = std::min(options.jobs ? options.jobs : processors(), most);
  const unsigned each = processors() / jobs;
  return {.jobs = jobs, .threads = each < 2 ? 0 : std::min(each, kMostThreads)};
}

// ---- Conversions ----------------------------------------------------------------------------

std::vector<Converted> convert_classic(const ConvertOptions& options,
                                       const PlannedConversion& planned) {
  if (const auto dsd = read_dsd_headers(planned.input.path)) {
    convert_dsd_to_wav_classic(classic_wav_request(options, planned, *dsd), *dsd);
    return {Converted{.seconds = static_cast<double>(dsd->info.sampleCount) /
                                 std::max(1u, dsd->info.samplingFrequency)}};
  }
  PcmInput pcm(planned.input.path);
  const double seconds =
      static_cast<double>(pcm.declared_frames().value_or(0)) / std::max(1u, pcm.rate_hz());
  convert_pcm_to_dsd_classic(classic_dsd_request(options, planned, pcm), pcm);
  return {Converted{.seconds = seconds}};
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

Converted convert_dsd(const ConvertOptions& options, const Plan& plan, size_t index,
                      const Share& share) {
  const PlannedConversion& planned = plan[index];
  DsdInput dsd = DsdInput::open_dsd(planned.input.path);
  if (is_dsd(planned.kind))
    return convert_dsd_to_dsd(dsd_request(options, planned, dsd, share), dsd);
  PcmRequest request = pcm_request(options, planned, dsd, share);
  place_in_recording(plan, index, request);
  return convert_dsd_to_pcm(request, dsd);
}

// The conversions from `begin` to `end`, which are one recording when there are several.
std::vector<Converted> convert_pcm(const ConvertOptions& options, const Plan& plan, size_t begin,
                                   size_t end, const Share& share) {
  std::vector<PcmInput> inputs;
  std::vector<DsdRequest> requests;
  for (size_t i = begin; i < end; ++i) {
    inputs.emplace_back(plan[i].input.path);
    requests.push_back(dsd_request(options, plan[i], inputs.back(), share));
  }
  return convert_pcm_to_dsd(requests, inputs);
}

// PCM that goes on is one run of the modulator, so one job makes all of its files.
size_t end_of_job(const Plan& plan, size_t begin) {
  size_t end = begin + 1;
  if (!plan[begin].is_dsd)
    while (plan[end - 1].goes_on) ++end;
  return end;
}

// ---- Without writing ------------------------------------------------------------------------

void show(const ConvertOptions& options, const PlannedConversion& planned, const Share& share) {
  OutputFile::Config output;
  std::string made;
  const auto take = [&](const DsdRequest& request) {
    output = request.output;
    made = rate_name(request.dsd_rate_hz);
  };
  if (options.engine == Engine::kClassic) {
    if (const auto dsd = read_dsd_headers(planned.input.path))
      output = classic_wav_request(options, planned, *dsd).output;
    else
      output = classic_dsd_request(options, planned, PcmInput(planned.input.path)).output;
  } else if (planned.is_dsd) {
    const DsdInput dsd = DsdInput::open_dsd(planned.input.path);
    if (is_dsd(planned.kind)) {
      take(dsd_request(options, planned, dsd, share));
    } else {
      const PcmRequest request = pcm_request(options, planned, dsd, share);
      output = request.output;
      made = std::to_string(request.rate_hz) + " Hz";
    }
  } else {
    const PcmInput pcm(planned.input.path);
    take(dsd_request(options, planned, pcm, share));
  }
  OutputFile::check(output);
  std::printf("%s -> %s%s\n", name_on_stdout(planned.input.path).c_str(),
              name_on_stdout(planned.output).c_str(), made.empty() ? "" : (", " + made).c_str());
}

// ---- All of it ------------------------------------------------------------------------------

struct Batch {
  const ConvertOptions& options;
  Plan plan;
  std::optional<Manifest> manifest;
  Split split;
  std::vector<double> gains;
};

void do_job(Batch& batch, size_t begin, size_t end) {
  const ConvertOptions& options = batch.options;
  const PlannedConversion& first = batch.plan[begin];
  if (first.failure) throw Failure(*first.failure);
  const Share share{.threads = batch.split.threads, .gain_db = batch.gains[begin]};
  if (options.dry_run) {
    for (size_t i = begin; i < end; ++i) show(options, batch.plan[i], share);
    return;
  }
  const auto convert = [&]() -> std::vector<Converted> {
    if (!options.directory.empty() || !options.names.empty())
      for (size_t i = begin; i < end; ++i) make_directory_of(batch.plan[i].output);
    if (options.engine == Engine::kClassic) return convert_classic(options, first);
    if (first.is_dsd) return {convert_dsd(options, batch.plan, begin, share)};
    return convert_pcm(options, batch.plan, begin, end, share);
  };
  if (batch.manifest)
    run_recorded(options, *batch.manifest,
                 {.conversions = std::span(batch.plan).subspan(begin, end - begin),
                  .gains_db = std::span(batch.gains).subspan(begin, end - begin),
                  .run = convert});
  else
    convert();
}

ExitCode run(const ConvertOptions& options) {
  Batch batch{.options = options,
              .plan = plan_conversions(options),
              .manifest = {},
              .split = {},
              .gains = {}};
  Plan& plan = batch.plan;
  if (options.manifest) batch.manifest.emplace(*options.manifest, options.dry_run);
  skip_what_is_done(options, batch.manifest ? &*batch.manifest : nullptr, plan);
  batch.split = split_machine(options, plan.size());
  batch.gains =
      options.dry_run ? std::vector<double>(plan.size()) : gains_of(options, plan, batch.split);
  std::vector<Job> jobs;
  size_t skipped = 0;
  for (size_t begin = 0, end; begin < plan.size(); begin = end) {
    end = end_of_job(plan, begin);
    if (plan[begin].skipped.empty()) {
      jobs.push_back([&, begin, end] { do_job(batch, begin, end); });
    } else {
      note_detail(plan[begin].output, plan[begin].skipped);
      skipped += end - begin;
    }
  }
  // What is shown is in the order of the inputs.
  const unsigned at_once = options.dry_run ? 1 : batch.split.jobs;
  std::vector<std::string> failures;
  std::vector<ExitCode> codes = run_jobs(jobs, at_once, &failures);
  note_failures(codes, failures);
  if (options.sidecars && !options.dry_run)
    for (const ExitCode code : run_jobs(sidecar_jobs(options, plan), at_once))
      codes.push_back(code);
  if (plan.empty()) note("--shard", "there is nothing in this part");
  if (skipped > 0)
    note(std::to_string(skipped) + " of " + counted(plan.size(), "input"), "nothing to do");
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
