// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin info: what DSD files hold, from their headers alone.

#include <CLI/CLI.hpp>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/classic/dsd_source.h"
#include "cli/commands/commands.h"
#include "cli/files/dsd_input.h"
#include "cli/words/exit_code.h"

namespace corvin::cli {
namespace {

struct Options {
  std::vector<std::string> paths;
  std::string engine = "studio";
};

struct Facts {
  uint32_t kind;
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

std::string speaker_names(uint32_t speakers) {
  constexpr const char* kNames[] = {"FL", "FR", "FC", "LFE", "BL", "BR"};
  std::string names;
  for (uint32_t bit = 0; bit < 6; ++bit)
    if ((speakers >> bit & 1) != 0) names += (names.empty() ? "" : " ") + std::string(kNames[bit]);
  return names;
}

void print(const std::string& path, const Facts& facts) {
  std::printf("%s\n", path.c_str());
  std::printf("  kind                 %s\n", kind_name(facts.kind));
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

std::optional<Failure> tell(const std::string& path) {
  StudioSource source;
  if (auto failure = source.open(path)) return failure;
  const corvin_file_info& info = source.info();
  const auto problem = source.problem();
  const uint64_t samples = problem ? info.stated_samples : info.samples;
  const uint64_t sound_bytes =
      problem ? info.sound_bytes : (samples / 8 + (samples % 8 != 0)) * info.channels;
  print(path, {info.container, plain_text(info.compression), info.channels, info.speakers,
               info.dsd_rate, samples, sound_bytes});
  if (problem) note(path, *problem);
  source.note_warnings(path);
  return {};
}

std::optional<Failure> tell_classic(const std::string& path) {
  DsdSource source;
  if (auto failure = read_source(path, source)) return failure;
  const DSD_INFO& info = source.info;
  print(path, {info.format, plain_text(info.compressionName), info.channels, 0,
               info.samplingFrequency, info.sampleCount, source.sound_bytes()});
  if (source.is_cut_short()) note(path, "is cut short: it declares more sound than it holds");
  return {};
}

int run(const Options& options) {
  ExitCode exit_code = kDone;
  for (const std::string& path : options.paths)
    if (const auto failure = options.engine == "classic" ? tell_classic(path) : tell(path))
      exit_code = report(path, *failure);
  return exit_code != kDone && options.paths.size() > 1 ? kSomeInputsFailed : exit_code;
}

}  // namespace

void add_info_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("info", "Print what DSD files hold");
  auto options = std::make_shared<Options>();
  command->add_option("FILE", options->paths, "DSDIFF, DSF or 1bit files")->required();
  command
      ->add_option("--engine", options->engine,
                   "Whose view of the files: studio, the sound that is there; or classic, what the "
                   "headers declare")
      ->type_name("NAME")
      ->check(CLI::IsMember({"studio", "classic"}));
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
