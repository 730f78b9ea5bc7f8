// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin info: what DSD files hold, from their headers alone.

#include <CLI/CLI.hpp>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "cli/classic/dsd_headers.h"
#include "cli/commands/choice_option.h"
#include "cli/commands/commands.h"
#include "cli/commands/each_input.h"
#include "cli/files/dsd_container.h"
#include "cli/files/dsd_input.h"
#include "cli/files/speakers.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"
#include "cli/words/stdout_name.h"

namespace corvin::cli {
namespace {

struct Options {
  std::vector<std::string> paths;
  Engine engine = Engine::kStudio;
};

struct Facts {
  uint32_t container;
  std::string compression;
  uint32_t channels;
  uint32_t speakers;
  uint32_t rate_hz;
  uint64_t samples;
  uint64_t sound_bytes;
};

// The name comes from the file as it is: cut at its end, and nothing that could steer a terminal.
std::string plain_text(std::span<const char> field) {
  std::string text;
  for (const char c : field) {
    if (c == 0) break;
    text += c >= ' ' && c <= '~' ? c : '?';
  }
  return text;
}

void print(const std::string& path, const Facts& facts) {
  std::printf("%s\n", name_on_stdout(path).c_str());
  std::printf("  kind                 %s\n", container_name(facts.container));
  if (!facts.compression.empty())
    std::printf("  compression          %s\n", facts.compression.c_str());
  std::printf("  channels             %" PRIu32 "\n", facts.channels);
  if (facts.channels > 2 && facts.speakers != 0)
    std::printf("  speakers             %s\n", speaker_names(facts.speakers).c_str());
  std::printf("  rate                 %s\n", rate_name(facts.rate_hz).c_str());
  std::printf("  duration             %s\n", duration_text(facts.samples, facts.rate_hz).c_str());
  std::printf("  samples per channel  %" PRIu64 "\n", facts.samples);
  std::printf("  bytes of sound       %" PRIu64 "\n", facts.sound_bytes);
  std::fflush(stdout);  // keeps notes below what they are about
}

void tell(const std::string& path) {
  const DsdInput input = DsdInput::open_dsd(path);
  const corvin_file_info& info = input.info();
  const std::string problem = input.problem();
  const uint64_t samples = problem.empty() ? info.samples : info.stated_samples;
  const uint64_t sound_bytes =
      problem.empty() ? (samples / 8 + (samples % 8 != 0)) * info.channels : info.sound_bytes;
  print(path, {info.container, plain_text(info.compression), info.channels, info.speakers,
               info.dsd_rate, samples, sound_bytes});
  if (!problem.empty()) note(path, problem);
  input.note_warnings();
}

void tell_classic(const std::string& path) {
  const auto input = read_dsd_headers(path);
  if (!input) throw no_dsd_file(path);
  const DSD_INFO& info = input->info;
  print(path, {info.format, plain_text(info.compressionName), info.channels, 0,
               info.samplingFrequency, info.sampleCount, input->sound_bytes()});
  if (input->is_cut_short()) note_cut_short(path);
}

}  // namespace

void add_info_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("info", "Print what DSD files hold");
  auto options = std::make_shared<Options>();
  command->add_option("FILE", options->paths, "DSDIFF, DSF or 1bit files")->required();
  add_choice(*command, "--engine", options->engine, kEngines,
             "Whose view of the files: studio, the sound that is there; or classic, what the "
             "headers declare")
      ->check(CLI::IsMember({"studio", "classic"}));
  command->callback([options, &exit_code] {
    const bool is_classic = options->engine == Engine::kClassic;
    exit_code = for_each_input(options->paths, is_classic ? tell_classic : tell);
  });
}

}  // namespace corvin::cli
