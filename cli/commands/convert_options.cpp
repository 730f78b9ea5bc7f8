// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_options.h"

#include <charconv>

#include "cli/commands/choice_option.h"

namespace corvin::cli {
namespace {

constexpr Choice<corvin_sample_format> kFormats[] = {
    {"16", CORVIN_S16},
    {"24", CORVIN_S24},
    {"32", CORVIN_S32},
    {"float", CORVIN_F32},
};

constexpr Choice<corvin_dither> kDithers[] = {
    {"none", CORVIN_DITHER_NONE},
    {"tpdf", CORVIN_DITHER_TPDF},
    {"shaped", CORVIN_DITHER_SHAPED},
};

constexpr Choice<corvin_phase> kPhases[] = {
    {"linear", CORVIN_LINEAR_PHASE},
    {"minimum", CORVIN_MINIMUM_PHASE},
};

constexpr Choice<corvin_modulator> kModulators[] = {
    {"standard", CORVIN_MODULATOR_STANDARD},
    {"high", CORVIN_MODULATOR_HIGH},
    {"best", CORVIN_MODULATOR_BEST},
};

constexpr Choice<uint32_t> kMultiples[] = {
    {"dsd64", 64},
    {"dsd128", 128},
    {"dsd256", 256},
    {"dsd512", 512},
};

// No value: `text` is not a number from its first to its last character.
template <class Number>
std::optional<Number> number_in(const std::string& text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  return number;
}

// An empty text asks for nothing.
std::optional<AskedRate> rate_in(const std::string& text) {
  if (text.empty()) return {};
  AskedRate rate{.text = text, .hz = number_in<uint32_t>(text), .dsd_multiple = {}};
  for (const Choice<uint32_t>& multiple : kMultiples)
    if (text == multiple.name) rate.dsd_multiple = multiple.value;
  return rate;
}

std::optional<double> gain_in(const std::string& text) {
  const auto db = number_in<double>(text);
  return db && *db >= -120 && *db <= 60 ? db : std::nullopt;
}

}  // namespace

void add_convert_options(CLI::App& command, ConvertOptions& options) {
  command
      .add_option("IN", options.input,
                  "DSDIFF, DSF or 1bit file, told by its content; or PCM in any file that "
                  "libsndfile reads (WAV, AIFF, FLAC...) of up to 8 channels")
      ->required();
  command
      .add_option(
          "-o,--output", options.output,
          "File to write, of the kind that its ending stands for: .dff, .dsf, .1bit; .flac, "
          ".wav (RF64 above 4 GiB), .rf64, .w64, .aiff, .caf, .wv. PCM and .1bit files get "
          "no tags")
      ->required()
      ->type_name("OUT");
  command
      .add_option_function<std::string>(
          "-r,--rate", [&](const std::string& text) { options.rate = rate_in(text); },
          "Of PCM: 44100 or 48000 Hz times 1, 2, 4, 8 or 16 (classic: any up to 768000 "
          "Hz); by default 96000 for multiples of 48 kHz, 88200 for all others. Of DSD: "
          "dsd64, dsd128, dsd256, dsd512 (times 44100 or 48000 Hz, as fits the input) or "
          "one of these rates in Hz; by default dsd64, or the input's own")
      ->type_name("RATE");
  add_choice(command, "-b,--bits", options.format, kFormats,
             "Bits per sample of PCM, 16, 24, 32 or float; by default 24")
      ->type_name("N")
      ->check(one_of(kFormats));
  add_choice(command, "--dither", options.dither, kDithers,
             "For 16, 24 and 32 bits: none, tpdf, or shaped, its noise moved to where the "
             "ear hears least; by default tpdf")
      ->type_name("KIND")
      ->check(one_of(kDithers));
  add_choice(command, "--phase", options.phase, kPhases,
             "Phase of the filters: linear, or minimum, which has no ringing ahead of a "
             "sound; by default linear")
      ->type_name("KIND")
      ->check(one_of(kPhases));
  command
      .add_option_function<std::string>(
          "--gain", [&](const std::string& text) { options.gain_db = gain_in(text); },
          "Level change in dB, -120 to 60; by default 0, which makes 50 % modulation full "
          "scale")
      ->type_name("DB")
      ->check([](const std::string& text) {
        return gain_in(text) ? std::string() : text + " is no number from -120 to 60";
      });
  add_choice(command, "--modulator", options.modulator, kModulators,
             "For DSD: standard, high or best, each with less noise and several times the "
             "work of the one before; by default high")
      ->type_name("GRADE")
      ->check(one_of(kModulators));
  add_choice(command, "--engine", options.engine, kEngines,
             "studio, or classic, which converts two channels to WAV and rates of any kind")
      ->type_name("NAME")
      ->check(one_of(kEngines));
  command.add_flag("-y,--overwrite", options.overwrite, "Replace OUT if it exists");
}

}  // namespace corvin::cli
