// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin info: what DSD files hold, from their headers alone.

#include <CLI/CLI.hpp>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/dsd_source.h"
#include "cli/exit_code.h"

namespace corvin::cli {
namespace {

// The name comes from the file as it is: cut at its end, and nothing that could steer a terminal.
std::string compression_name(const DSD_INFO& info) {
  std::string name;
  for (const char c : info.compressionName) {
    if (c == 0) break;
    name += c >= ' ' && c <= '~' ? c : '?';
  }
  return name;
}

void print(const std::string& path, const DsdSource& source) {
  const DSD_INFO& info = source.info;
  std::printf("%s\n", path.c_str());
  std::printf("  kind                 %s\n", kind_name(info.format));
  if (const std::string name = compression_name(info); !name.empty())
    std::printf("  compression          %s\n", name.c_str());
  std::printf("  channels             %" PRIu32 "\n", info.channels);
  std::printf("  rate                 %s\n", rate_name(info.samplingFrequency).c_str());
  std::printf("  duration             %s\n",
              duration_text(info.sampleCount, info.samplingFrequency).c_str());
  std::printf("  samples per channel  %" PRIu64 "\n", info.sampleCount);
  std::printf("  bytes of sound       %" PRIu64 "\n", source.sound_bytes());
}

int run(const std::vector<std::string>& paths) {
  ExitCode exit_code = kDone;
  for (const std::string& path : paths) {
    DsdSource source;
    if (const auto failure = read_source(path, source)) {
      exit_code = report(path, *failure);
      continue;
    }
    print(path, source);
    if (source.is_cut_short()) {
      std::fflush(stdout);  // keeps the note below what it is about
      note(path, "is cut short: it declares more sound than it holds");
    }
  }
  return exit_code != kDone && paths.size() > 1 ? kSomeInputsFailed : exit_code;
}

}  // namespace

void add_info_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("info", "Print what DSD files hold");
  auto paths = std::make_shared<std::vector<std::string>>();
  command->add_option("FILE", *paths, "DSDIFF, DSF or 1bit files")->required();
  command->callback([paths, &exit_code] { exit_code = run(*paths); });
}

}  // namespace corvin::cli
