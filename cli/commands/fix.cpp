// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin fix: mended copies of damaged DSD files.

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/inputs.h"
#include "cli/batch/jobs.h"
#include "cli/batch/piped_input.h"
#include "cli/commands/commands.h"
#include "cli/commands/convert_options.h"
#include "cli/files/dsd_container.h"
#include "cli/files/output_file.h"
#include "cli/mend/mended_copy.h"

namespace corvin::cli {
namespace {

struct Mending {
  Input input;
  std::string output;
  std::shared_ptr<const UnnamedFile> content;  // of a pipe
  std::optional<Failure> failure;              // why it cannot begin
};

std::string output_of(const ConvertOptions& options, const Input& input) {
  if (options.output) return *options.output;
  const std::string name = input.path.substr(input.path.rfind('/') + 1);
  return options.directory + (options.directory.ends_with('/') ? "" : "/") + input.below + name;
}

std::vector<Mending> plan(const ConvertOptions& options) {
  if (!options.output && options.directory.empty())
    throw Failure(kUsage, "--output", "or --output-dir says where the mended copies go");
  const auto inputs =
      collect_inputs(options.inputs, options.recursive,
                     [](const std::string& path) { return container_of(path).has_value(); });
  if (options.output && inputs.size() != 1)
    throw Failure(kUsage, "--output",
                  "names one file, for " + std::to_string(inputs.size()) +
                      " inputs; -O names a directory for them");
  std::vector<Mending> all;
  std::map<std::string, std::string> first;
  for (const Input& input : inputs) {
    Mending one{.input = input, .output = output_of(options, input), .content = {}, .failure = {}};
    const auto [at, is_new] = first.emplace(one.output, input.path);
    try {
      if (!input.problem.empty()) throw Failure(kBadInput, input.path, input.problem);
      if (!is_new)
        throw Failure(kUsage, input.path,
                      "would become " + one.output + ", as " + at->second + " does");
      one.content = content_of_pipe(input.path);
      if (one.content) one.input.path = one.content->path();
    } catch (const Failure& failure) {
      one.failure = failure;
    }
    all.push_back(std::move(one));
  }
  return all;
}

void check_container(const DsdInput& input, const std::string& output) {
  if (input.is_wavpack())
    throw Failure(kBadInput, input.path(), "is WavPack, which can be converted but not mended");
  const auto asked = container_of(output);
  if (asked && static_cast<uint32_t>(*asked) != input.info().container)
    throw Failure(kUsage, output,
                  std::string("its ending says another kind than the input's, ") +
                      container_name(input.info().container) + "; corvin remux changes that");
}

void mend(const ConvertOptions& options, const std::shared_ptr<const FileIdentities>& inputs,
          const Mending& mending) {
  if (mending.failure) throw Failure(*mending.failure);
  DsdInput input = DsdInput::open_dsd(mending.input.path);
  input.require_sound();
  check_container(input, mending.output);
  const Faults faults = faults_of(input);
  if (faults.empty()) return note(mending.input.path, "is in order: there is nothing to mend");
  if (!options.directory.empty()) make_directory_of(mending.output);
  write_mended_copy(input, faults,
                    {.path = mending.output,
                     .input_path = mending.input.path,
                     .overwrite = options.overwrite,
                     .force = options.force,
                     .preserve_time = options.preserve_time,
                     .other_inputs = inputs});
}

ExitCode run(const ConvertOptions& options) {
  const std::vector<Mending> all = plan(options);
  const auto identities = std::make_shared<FileIdentities>();
  for (const Mending& one : all) identities->add(one.input.path);
  std::vector<Job> jobs;
  for (const Mending& one : all) jobs.push_back([&] { mend(options, identities, one); });
  const std::vector<ExitCode> codes = run_jobs(jobs, options.jobs ? options.jobs : processors());
  note_failures(codes);
  return exit_code_of(codes);
}

}  // namespace

void add_fix_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("fix", "Write mended copies of damaged DSD files");
  auto options = std::make_shared<ConvertOptions>();
  command->add_option("IN", options->inputs, "DSDIFF, DSF or 1bit files. - is standard input")
      ->required();
  auto* output = command
                     ->add_option("-o,--output", options->output,
                                  "File to write, of the input's kind; for one input. - is "
                                  "standard output")
                     ->type_name("FILE");
  command
      ->add_option("-O,--output-dir", options->directory,
                   "Directory for the mended copies, which have their inputs' names; made if it "
                   "is missing. What was found by -R keeps its subdirectories")
      ->type_name("DIR")
      ->excludes(output);
  add_writing_options(*command, *options);
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
