// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert: finds out from the input and the output's name which way the conversion goes, and
// goes it.

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/commands/commands.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_requests.h"
#include "cli/files/dsd_container.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

void run_studio(const ConvertOptions& options) {
  if (auto dsd = DsdInput::open(options.input)) {
    if (container_of(options.output))
      convert_dsd_to_dsd(dsd_request(options, *dsd), *dsd);
    else
      convert_dsd_to_wav(wav_request(options, *dsd), *dsd);
    return;
  }
  PcmInput pcm(options.input);
  convert_pcm_to_dsd(dsd_request(options, pcm), pcm);
}

void run_classic(const ConvertOptions& options) {
  if (const auto dsd = read_dsd_headers(options.input)) {
    convert_dsd_to_wav_classic(classic_wav_request(options, *dsd), *dsd);
    return;
  }
  PcmInput pcm(options.input);
  convert_pcm_to_dsd_classic(classic_dsd_request(options, pcm), pcm);
}

}  // namespace

void add_convert_command(CLI::App& app, int& exit_code) {
  CLI::App* command =
      app.add_subcommand("convert", "Convert DSD to WAV, PCM to DSD, or DSD to DSD");
  auto options = std::make_shared<ConvertOptions>();
  add_convert_options(*command, *options);
  command->callback([options, &exit_code] {
    if (options->engine == Engine::kClassic)
      run_classic(*options);
    else
      run_studio(*options);
    exit_code = kDone;
  });
}

}  // namespace corvin::cli
