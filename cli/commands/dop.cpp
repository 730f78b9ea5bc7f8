// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin dop: DSD in files of PCM, for what plays or carries nothing else, and out of them again.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "cli/batch/jobs.h"
#include "cli/commands/choice_option.h"
#include "cli/commands/commands.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"
#include "cli/convert/dop.h"
#include "cli/files/dsd_container.h"

namespace corvin::cli {
namespace {

// What convert is asked for as to files; the inputs and outputs of both are found in the same way.
using Options = ConvertOptions;

using Way = void(const Options& options, const PlannedConversion& planned,
                 const OutputFile::Config& output);

void encode(const Options& options, const PlannedConversion& planned,
            const OutputFile::Config& output) {
  if (!planned.is_dsd) throw no_dsd_file(planned.input.path);
  if (is_dsd(planned.kind))
    throw Failure(kUsage, output.path, "is to hold PCM: flac, wav, rf64, w64, aiff, caf or wv");
  DsdInput input = DsdInput::open_dsd(planned.input.path);
  dop_encode(output, std::get<PcmKind>(planned.kind),
             {.verify = options.verify, .strict = options.strict}, input);
}

void decode(const Options& options, const PlannedConversion& planned,
            const OutputFile::Config& output) {
  if (planned.is_dsd)
    throw Failure(kBadInput, planned.input.path, "is DSD already, not PCM that carries it");
  if (!is_dsd(planned.kind)) throw Failure(kUsage, output.path, "is to hold DSD: dsf, dff or 1bit");
  PcmInput input(planned.input.path);
  dop_decode(output, std::get<corvin_container>(planned.kind),
             {.verify = options.verify, .strict = options.strict}, input);
}

ExitCode run(const Options& options, Way& way) {
  const auto plan = plan_conversions(options);
  std::vector<Job> jobs;
  for (const PlannedConversion& planned : plan)
    jobs.emplace_back([&] {
      if (planned.failure) throw Failure(*planned.failure);
      if (!options.directory.empty()) make_directory_of(planned.output);
      way(options, planned,
          {.path = planned.output,
           .input_path = planned.input.path,
           .overwrite = options.overwrite,
           .force = options.force,
           .preserve_time = options.preserve_time,
           .other_inputs = planned.all_inputs});
    });
  const auto codes = run_jobs(jobs, options.jobs != 0 ? options.jobs : processors());
  note_failures(codes);
  return exit_code_of(codes);
}

void add_way(CLI::App& dop, const char* name, const char* description, const char* inputs,
             const char* kinds, OutputKind kind, Way& way, int& exit_code) {
  CLI::App* command = dop.add_subcommand(name, description);
  auto options = std::make_shared<Options>();
  command->add_option("IN", options->inputs, inputs)->required();
  add_output_options(*command, *options, kinds);
  command->add_flag("--verify", options->verify, "Read each output back and compare");
  command->add_flag("--strict", options->strict,
                    "Write nothing for an input that is damaged or cut short, instead of "
                    "converting what is there");
  command->callback([options, kind, &way, &exit_code] {
    // A directory is searched for what becomes that kind.
    if (!options->kind && !options->output) options->kind = kind;
    exit_code = run(*options, way);
  });
}

}  // namespace

void add_dop_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("dop", "Put DSD into PCM, bit for bit, and take it out");
  command->require_subcommand(1);
  add_way(
      *command, "encode", "Put DSD into 24-bit PCM of a 16th of its rate",
      "DSDIFF, DSF, 1bit or WavPack files with DSD, or directories with -R. - is standard input",
      "flac, wav, rf64, w64, aiff, caf or wv; by default flac", PcmKind::kFlac, encode, exit_code);
  add_way(*command, "decode", "Take the DSD out of such PCM",
          "PCM files that carry DSD, or directories with -R. - is standard input",
          "dsf, dff or 1bit; by default dsf", CORVIN_DSF, decode, exit_code);
}

}  // namespace corvin::cli
