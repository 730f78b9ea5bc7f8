// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert: the options, and which way the conversion goes.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <string>
#include <vector>

#include "cli/classic/dsd_source.h"
#include "cli/commands/commands.h"
#include "cli/convert/convert.h"
#include "cli/words/exit_code.h"

namespace corvin::cli {
namespace {

int run_classic(const ConvertOptions& options) {
  DsdSource source;
  const auto failure = read_source(options.input, source);
  if (source.is_of_unknown_kind) return convert_to_dsd_classic(options);
  if (failure) return report(options.input, *failure);
  return convert_to_wav_classic(options, source);
}

int run(const ConvertOptions& options) {
  if (options.engine == "classic") return run_classic(options);
  StudioSource source;
  const auto failure = source.open(options.input);
  if (source.is_of_unknown_kind()) return convert_to_dsd(options);
  if (failure) return report(options.input, *failure);
  if (container_of(options.output) != 0) return convert_dsd_to_dsd(options, source);
  return convert_to_wav(options, source);
}

}  // namespace

int container_of(const std::string& path) {
  const auto ends_in = [&](std::string_view ending) {
    return path.size() > ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), path.rbegin(), [](char a, char b) {
             return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b + ('a' - 'A')) : b);
           });
  };
  return ends_in(".dff") ? 1 : ends_in(".dsf") ? 2 : ends_in(".1bit") ? 3 : 0;
}

int parse_rate_hz(const std::string& text, int max_hz) {
  int rate_hz = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rate_hz);
  const bool is_whole = error == std::errc() && end == text.data() + text.size();
  return is_whole && rate_hz >= 1 && rate_hz <= max_hz ? rate_hz : 0;
}

void add_convert_command(CLI::App& app, int& exit_code) {
  CLI::App* command =
      app.add_subcommand("convert", "Convert DSD to WAV, PCM to DSD, or DSD to DSD");
  auto options = std::make_shared<ConvertOptions>();
  command
      ->add_option("IN", options->input,
                   "DSDIFF, DSF or 1bit file, told by its content; or PCM in any file that "
                   "libsndfile reads (WAV, AIFF, FLAC...) of up to 8 channels")
      ->required();
  command
      ->add_option("-o,--output", options->output,
                   "File to write: DSD when its name ends in .dff, .dsf or .1bit, else WAV (RF64 "
                   "above 4 GiB). WAV and .1bit files get no tags")
      ->required()
      ->type_name("OUT");
  command
      ->add_option("-r,--rate", options->rate,
                   "Of WAV: 44100 or 48000 Hz times 1, 2, 4, 8 or 16 (classic: any up to 768000 "
                   "Hz); by default 96000 for multiples of 48 kHz, 88200 for all others. Of DSD: "
                   "dsd64, dsd128, dsd256, dsd512 (times 44100 or 48000 Hz, as fits the input) or "
                   "one of these rates in Hz; by default dsd64, or the input's own")
      ->type_name("RATE");
  const auto one_of = [](std::vector<std::string> names) {
    return [names](const std::string& text) {
      if (std::find(names.begin(), names.end(), text) != names.end()) return std::string();
      std::string list;
      for (const std::string& name : names)
        list += (list.empty() ? "" : name == names.back() ? " or " : ", ") + name;
      return text + " is not " + list;
    };
  };
  command
      ->add_option("-b,--bits", options->bits,
                   "Bits per sample of the WAV file, 16, 24, 32 or float; by default 24")
      ->type_name("N")
      ->check(one_of({"16", "24", "32", "float"}));
  command
      ->add_option("--dither", options->dither,
                   "For 16, 24 and 32 bits: none, tpdf, or shaped, its noise moved to where the "
                   "ear hears least; by default tpdf")
      ->type_name("KIND")
      ->check(one_of({"none", "tpdf", "shaped"}));
  command
      ->add_option("--phase", options->phase,
                   "Phase of the filters: linear, or minimum, which has no ringing ahead of a "
                   "sound; by default linear")
      ->type_name("KIND")
      ->check(one_of({"linear", "minimum"}));
  command
      ->add_option("--gain", options->gain_db,
                   "Level change in dB, -120 to 60; by default 0, which makes 50 % modulation full "
                   "scale")
      ->type_name("DB")
      ->check([](const std::string& text) {
        double db = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), db);
        const bool is_number = error == std::errc() && end == text.data() + text.size();
        return is_number && db >= -120 && db <= 60 ? std::string()
                                                   : text + " is no number from -120 to 60";
      });
  command
      ->add_option("--modulator", options->modulator,
                   "For DSD: standard, high or best, each with less noise and several times the "
                   "work of the one before; by default standard")
      ->type_name("GRADE")
      ->check(one_of({"standard", "high", "best"}));
  command
      ->add_option("--engine", options->engine,
                   "studio, or classic, which converts two channels to WAV and rates of any kind")
      ->type_name("NAME")
      ->check(one_of({"studio", "classic"}));
  command->add_flag("-y,--overwrite", options->overwrite, "Replace OUT if it exists");
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
