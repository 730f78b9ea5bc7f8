// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/tell_each.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>

#include "cli/batch/in_order.h"
#include "cli/batch/inputs.h"
#include "cli/batch/jobs.h"
#include "cli/batch/piped_input.h"
#include "cli/files/output_kind.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

struct Looked {
  Subject subject;
  std::shared_ptr<const UnnamedFile> content;  // of a pipe
  std::optional<Failure> failure;              // why it cannot be looked at
};

// Named files are looked at whatever they are called; in directories the ending tells.
std::vector<Looked> subjects_of(const TellOptions& options) {
  std::vector<Looked> all;
  std::vector<Input> inputs;
  if (options.recursive)
    inputs = collect_inputs(options.paths, true, [](const std::string& path) {
      return input_ending_of(path) != InputEnding::kOther;
    });
  else
    for (const std::string& path : options.paths) inputs.push_back({path, "", ""});
  for (const Input& input : inputs) {
    Looked one;
    one.subject = {.path = input.path, .name = input.path};
    if (!input.problem.empty()) one.failure.emplace(kBadInput, input.path, input.problem);
    try {
      if (!one.failure) one.content = content_of_pipe(input.path);
      if (one.content) one.subject.path = one.content->path();
    } catch (const Failure& failure) {
      one.failure = failure;
    }
    all.push_back(std::move(one));
  }
  return all;
}

}  // namespace

void add_tell_options(CLI::App& command, TellOptions& options, const std::string& files) {
  command.add_option("FILE", options.paths, files)->required();
  command.add_flag("-R,--recursive", options.recursive,
                   "Look at the sound files in directories, and below them");
  command
      .add_option("-j,--jobs", options.jobs,
                  "Files to look at at once; by default as many as there are processors")
      ->check(CLI::Range(1u, 256u))
      ->type_name("N");
  command.add_flag("--json", options.as_json, "Print a JSON array of an object for each file");
}

ExitCode tell_each(const TellOptions& options,
                   const std::function<void(const Subject&, Told&)>& look) {
  const std::vector<Looked> all = subjects_of(options);
  std::vector<Json> objects(all.size());
  int write_error = 0;
  InOrder printed(all.size(), [&](const std::string& text) {
    // At once, so that what is said of a file stays near to what is told of it.
    const bool is_written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    if (!is_written && write_error == 0) write_error = errno;
  });
  std::vector<Job> jobs;
  for (size_t i = 0; i < all.size(); ++i)
    jobs.push_back([&, i] {
      Told told;
      std::optional<Failure> failure = all[i].failure;
      try {
        if (!failure) look(all[i].subject, told);
      } catch (const Failure& caught) {
        failure = caught;
      } catch (const std::exception& error) {
        failure.emplace(kBadInput, all[i].subject.path, error.what());
      }
      objects[i] = {{"file", utf8_of(all[i].subject.name)}};
      objects[i].update(told.object);
      if (failure) objects[i]["error"] = utf8_of(failure->what());
      printed.end(i, options.as_json ? "" : told.text);
      if (failure) throw Failure(*failure);
    });
  const std::vector<ExitCode> codes = run_jobs(jobs, options.jobs ? options.jobs : processors());
  if (write_error != 0) throw Failure(kWriteError, "standard output", std::strerror(write_error));
  if (options.as_json)
    std::printf("%s\n", printable_json(Json(std::move(objects)).dump(2)).c_str());
  return exit_code_of(codes);
}

}  // namespace corvin::cli
