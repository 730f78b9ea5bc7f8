// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin remux: the sound and the tags of DSD files in another container, bit for bit, which is always
// checked.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "cli/batch/jobs.h"
#include "cli/commands/commands.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"
#include "cli/commands/convert_requests.h"
#include "cli/files/dsd_container.h"
#include "cli/files/output_file.h"
#include "cli/words/measures.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

// What becomes a part of any container, or of the tags.
constexpr const char* kCarried[] = {"FRM8", "FVER", "PROP", "FS  ", "CHNL", "CMPR", "DSD ",
                                    "ID3 ", "DIIN", "DIAR", "DITI", "fmt ", "data", "1bit"};

// "COMT, ABSS": the chunks that stay behind, each name once.
std::string left_behind(const File& file) {
  std::vector<std::string> names;
  for (const corvin_file_chunk& chunk : file.chunks()) {
    const std::string name = chunk.id;
    if (std::find(std::begin(kCarried), std::end(kCarried), name) != std::end(kCarried)) continue;
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    names.push_back(name);
    constexpr size_t kMost = 16;  // a broken file could go on for long
    if (names.size() == kMost) break;
  }
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "'" : ", '") + name + "'";
  return list;
}

void note_left_behind(const PlannedConversion& planned, DsdInput& input) {
  if (!input.is_wavpack())
    if (const std::string chunks = left_behind(input.file()); !chunks.empty())
      note(planned.output, "gets the sound and the tags without the chunks " + chunks);
  const auto container = std::get<corvin_container>(planned.kind);
  const uint64_t rest = input.info().samples % 8;
  if (container != CORVIN_DSF && rest != 0)
    note(planned.output, "ends " + counted(8 - rest, "sample") + " later, in silence, as " +
                             container_name(container) + " knows whole bytes only");
}

void remux(const ConvertOptions& options, const PlannedConversion& planned) {
  if (planned.failure) throw Failure(*planned.failure);
  if (!options.directory.empty()) make_directory_of(planned.output);
  DsdInput input = DsdInput::open_dsd(planned.input.path);
  note_left_behind(planned, input);
  convert_dsd_to_dsd(dsd_request(options, planned, input, {}), input);
}

void check_kind(const ConvertOptions& options) {
  const auto named = options.output ? output_kind_of(*options.output) : std::nullopt;
  const auto kind = options.kind ? options.kind : named;
  if (!kind && !options.output)
    throw Failure(kUsage, "--format", "says what the outputs are to be: dsf, dff or 1bit");
  if (kind && !is_dsd(*kind))
    throw Failure(kUsage, options.output && !options.kind ? *options.output : "--format",
                  "is PCM; DSD is kept as it is in dsf, dff or 1bit");
}

ExitCode run(ConvertOptions& options) {
  check_kind(options);
  options.verify = true;
  options.dsd_only = true;
  const std::vector<PlannedConversion> plan = plan_conversions(options);
  std::vector<Job> jobs;
  for (const PlannedConversion& planned : plan) jobs.push_back([&] { remux(options, planned); });
  const std::vector<ExitCode> codes = run_jobs(jobs, options.jobs ? options.jobs : processors());
  note_failures(codes);
  return exit_code_of(codes);
}

}  // namespace

void add_remux_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("remux", "Put DSD into another container, bit for bit");
  auto options = std::make_shared<ConvertOptions>();
  command
      ->add_option("IN", options->inputs,
                   "DSDIFF, DSF, 1bit files, or WavPack files with DSD. - is standard input")
      ->required();
  add_output_options(*command, *options,
                     "dsf, dff or 1bit; needed unless the ending of -o says it");
  command->add_flag("--strict", options->strict,
                    "Write nothing for an input that is damaged or cut short");
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
