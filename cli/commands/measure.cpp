// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin measure: levels, loudness and spectra of files, in words, as JSON or as a picture.

#include <unistd.h>
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/inputs.h"
#include "cli/batch/jobs.h"
#include "cli/batch/piped_input.h"
#include "cli/commands/commands.h"
#include "cli/files/output_file.h"
#include "cli/files/output_kind.h"
#include "cli/measure/null_test.h"
#include "cli/measure/picture.h"
#include "cli/measure/report.h"
#include "cli/measure/sound_meter.h"
#include "cli/words/failure.h"
#include "cli/words/stdout_name.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

struct Options {
  std::vector<std::string> paths;
  bool recursive = false;
  bool as_json = false;
  std::string other;  // of --null
  std::string svg;
  bool overwrite = false;
  bool force = false;
  unsigned jobs = 0;
};

/** A file to be measured. */
struct Measured {
  std::string path;
  std::string name;                            // as it was given
  std::shared_ptr<const UnnamedFile> content;  // of a pipe
  std::optional<Failure> failure;
  std::string other;  // to be compared with
  std::string text;
  Json json;
};

std::string without_directory(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// Before anything is measured: a picture that cannot be had is no reason to wait for it.
std::unique_ptr<OutputFile> open_picture(const Options& options, const Measured& file) {
  if (options.svg.empty()) return nullptr;
  const auto others = std::make_shared<FileIdentities>();
  if (!file.other.empty()) others->add(file.other);
  return std::make_unique<OutputFile>(OutputFile::Config{.path = options.svg,
                                                         .input_path = file.path,
                                                         .overwrite = options.overwrite,
                                                         .force = options.force,
                                                         .other_inputs = others});
}

void write_picture(const Options& options, OutputFile& output, const SoundPicture& picture) {
  const std::string text = svg_of(picture);
  for (size_t done = 0; done < text.size();) {
    const ssize_t now = write(output.descriptor(), text.data() + done, text.size() - done);
    if (now < 0 && errno == EINTR) continue;
    if (now <= 0) throw Failure(kWriteError, options.svg, std::strerror(errno));
    done += static_cast<size_t>(now);
  }
  output.commit();
}

void measure_one(const Options& options, Measured& file) {
  const auto output = open_picture(options, file);
  const Measurement measured = measure_file(file.path, file.name);
  if (output) write_picture(options, *output, picture_of(measured, without_directory(file.name)));
  if (options.as_json) {
    file.json["file"] = file.name;
    file.json.update(report_json(measured));
  } else {
    file.text = name_on_stdout(file.name) + "\n" + report_text(measured);
  }
}

void compare(const Options& options, Measured& file) {
  const auto output = open_picture(options, file);
  const NullTest test = null_test(file.path, file.other, file.name, options.other);
  // As they are, or at their best when they are shifted.
  if (output)
    write_picture(
        options, *output,
        picture_of(test.differences.back().left,
                   without_directory(file.name) + " without " + without_directory(options.other)));
  if (options.as_json) {
    file.json["file"] = file.name;
    file.json["null"] = options.other;
    file.json.update(null_json(test));
  } else {
    file.text =
        name_on_stdout(file.name) + "\n" + name_on_stdout(options.other) + "\n" + null_text(test);
  }
}

void measure(const Options& options, Measured& file) {
  if (file.failure) throw Failure(*file.failure);
  if (file.other.empty())
    measure_one(options, file);
  else
    compare(options, file);
}

// Pipes are read before there are several threads, as they get their names for messages then.
std::vector<Measured> files_of(const Options& options) {
  std::vector<Measured> files;
  for (const Input& input : collect_inputs(
           options.paths, options.recursive,
           [](const std::string& path) { return input_ending_of(path) != InputEnding::kOther; })) {
    Measured file{.path = input.path,
                  .name = input.path,
                  .content = {},
                  .failure = {},
                  .other = {},
                  .text = {},
                  .json = {}};
    try {
      if (!input.problem.empty()) throw Failure(kBadInput, input.path, input.problem);
      file.content = content_of_pipe(input.path);
      if (file.content) file.path = file.content->path();
    } catch (const Failure& failure) {
      file.failure = failure;
    }
    files.push_back(std::move(file));
  }
  return files;
}

ExitCode run(const Options& options) {
  std::vector<Measured> files = files_of(options);
  if (!options.other.empty() && files.size() != 1)
    throw Failure(kUsage, "--null",
                  "compares with one input, not with " + std::to_string(files.size()));
  const auto other = options.other.empty() ? nullptr : content_of_pipe(options.other);
  if (!options.other.empty()) files[0].other = other ? other->path() : options.other;
  if (!options.svg.empty() && files.size() != 1)
    throw Failure(kUsage, "--svg",
                  "names one picture, for " + std::to_string(files.size()) + " inputs");
  if (options.svg == "-" && options.as_json)
    throw Failure(kUsage, "--svg", "and --json cannot both go to standard output");
  std::vector<Job> jobs;
  for (Measured& file : files) jobs.push_back([&] { measure(options, file); });
  const std::vector<ExitCode> codes = run_jobs(jobs, options.jobs ? options.jobs : processors());
  Json all = Json::array();
  for (Measured& file : files) {
    // A picture on standard output is all of it.
    if (options.svg != "-") std::fputs(file.text.c_str(), stdout);
    if (!file.json.is_null()) all.push_back(std::move(file.json));
  }
  if (options.as_json)
    std::printf("%s\n",
                printable_json(all.dump(2, ' ', false, Json::error_handler_t::replace)).c_str());
  note_failures(codes);
  return exit_code_of(codes);
}

}  // namespace

void add_measure_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("measure", "Measure levels, loudness, noise and spectra");
  auto options = std::make_shared<Options>();
  command
      ->add_option("FILE", options->paths,
                   "DSD and PCM files of any kind that can be read. - is standard input")
      ->required();
  command->add_flag("-R,--recursive", options->recursive,
                    "Measure what is in directories, and below them");
  command->add_flag("--json", options->as_json,
                    "Print a JSON array of one object per readable file");
  command
      ->add_option("--null", options->other,
                   "Measure what is left of FILE when this one is taken away from it, as they are "
                   "and, if one is shifted by up to a second, at the place where they are alike")
      ->type_name("OTHER");
  command
      ->add_option("--svg", options->svg,
                   "Draw the spectrum, and the level over time, of one input. - is standard output")
      ->type_name("FILE");
  command->add_flag("-y,--overwrite", options->overwrite, "Replace a picture that exists");
  command->add_flag("--force", options->force, "With -y, even one that is write-protected");
  command
      ->add_option("-j,--jobs", options->jobs,
                   "Inputs to measure at once; by default as many as there are processors")
      ->check(CLI::Range(1u, 256u))
      ->type_name("N");
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
