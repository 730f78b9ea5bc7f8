// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_options.h"

#include "cli/commands/choice_option.h"
#include "cli/commands/value_option.h"

namespace corvin::cli {
namespace {

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

constexpr Choice<GainGroup> kGainGroups[] = {
    {"file", GainGroup::kFile},
    {"dir", GainGroup::kDirectory},
    {"all", GainGroup::kAll},
};

void add_files(CLI::App& command, ConvertOptions& options) {
  command
      .add_option("IN", options.inputs,
                  "DSDIFF, DSF or 1bit files, told by their content; or PCM in any file that can "
                  "be read (WAV, AIFF, FLAC, WavPack, Ogg...). - is standard input")
      ->required();
  add_output_options(command, options,
                     "flac, wav, rf64, w64, aiff, caf, wv, dsf, dff or 1bit; by default flac for "
                     "DSD and dsf for PCM");
}

void add_sound(CLI::App& command, ConvertOptions& options) {
  add_value(command, "-r,--rate", options.rate, rate_in,
            "a rate such as 44.1k, 88200, dxd, dsd64 or 128",
            "Of PCM: 8000 to 768000 Hz, also as 44.1k or dxd; by default 88200 for DSD64 and "
            "176400 above, 96000 and 192000 for multiples of 48 kHz. Of DSD: dsd64, dsd128, "
            "dsd256, dsd512 or one of these rates in Hz; by default dsd64, or the input's own")
      ->type_name("RATE");
  add_value(command, "-b,--bits", options.format, sample_format_in, "16, 20, 24, 32, f32 or f64",
            "Of PCM: 16, 20, 24 or 32 bits, f32 (float) or f64; by default 24")
      ->type_name("N");
  add_choice(command, "--dither", options.dither, kDithers,
             "For 16 to 32 bits: none, tpdf, or shaped, its noise moved to where the ear hears "
             "least; by default tpdf")
      ->type_name("KIND")
      ->check(one_of(kDithers));
  add_choice(command, "--phase", options.phase, kPhases,
             "Phase of the filters: linear, or minimum, which has no ringing ahead of a sound; by "
             "default linear")
      ->type_name("KIND")
      ->check(one_of(kPhases));
  add_value(command, "--lowpass", options.lowpass, band_in, "off, a frequency, or PASS:STOP",
            "Band to keep: flat up to PASS Hz and closed from STOP Hz on (1.6 times PASS if it is "
            "not given), or off for all that the rates allow. By default it ends where the noise "
            "of the source's modulator begins to rise: 20k:32k for DSD64, 40k:60k for DSD128")
      ->type_name("PASS[:STOP]");
  add_value(command, "--gain", options.gain, gain_in, "auto or a number of dB from -120 to 60",
            "Change of level in dB; or auto, which measures the true peak first and brings it to "
            "-0.1 dBFS. By default 0, which makes 50 % modulation full scale both ways")
      ->type_name("DB");
  add_choice(command, "--group", options.gain_group, kGainGroups,
             "For --gain auto: one gain for each file, for each directory (dir), or for all")
      ->type_name("WHICH")
      ->check(one_of(kGainGroups));
  add_choice(command, "--modulator", options.modulator, kModulators,
             "For DSD: standard, high or best, each with less noise and several times the work of "
             "the one before; by default high")
      ->type_name("GRADE")
      ->check(one_of(kModulators));
}

void add_cuts(CLI::App& command, ConvertOptions& options) {
  auto* gapless = command.add_flag(
      "--gapless", options.gapless,
      "Inputs that follow each other are one recording: the filters hear across the "
      "joints, so that the outputs played one after the other have none");
  const std::string wanted = "a number of samples, or a time such as 90s, 1:30 or 0:01:30.5";
  add_value(command, "--skip", options.skip, position_in, wanted,
            "Begin there, in samples of the input or as a time (90s, 1:30, 0:01:30.5)")
      ->type_name("WHERE")
      ->excludes(gapless);
  add_value(command, "--until", options.until, position_in, wanted, "End there")
      ->type_name("WHERE")
      ->excludes(gapless);
  add_value(command, "--channels", options.channels, channel_map_in,
            "a list of the input's channels such as 2,1",
            "The input's channels, counted from 1, that become the output's: 2,1 swaps two")
      ->type_name("MAP");
}

void add_care(CLI::App& command, ConvertOptions& options) {
  command.add_flag("--verify", options.verify, "Read each output back and compare");
  command.add_flag("--strict", options.strict,
                   "Write nothing for an input that is damaged or cut short, instead of converting "
                   "what is there");
  add_choice(command, "--engine", options.engine, kEngines,
             "studio, or classic, which converts two channels at the rates that it plans")
      ->type_name("NAME")
      ->check(one_of(kEngines));
}

}  // namespace

void add_output_options(CLI::App& command, ConvertOptions& options, const std::string& kinds) {
  auto* output = command
                     .add_option("-o,--output", options.output,
                                 "File to write, of the kind that its ending says; for one input. "
                                 "- is standard output")
                     ->type_name("FILE");
  command
      .add_option("-O,--output-dir", options.directory,
                  "Directory for the outputs, made if it is missing; by default each comes beside "
                  "its input. What was found by -R keeps its subdirectories")
      ->type_name("DIR")
      ->excludes(output);
  command.add_flag("-R,--recursive", options.recursive,
                   "Convert what is in directories, and below them");
  add_value(command, "-f,--format", options.kind, output_kind_named,
            "flac, wav, rf64, w64, aiff, caf, wv, dsf, dff or 1bit",
            "Kind of the outputs: " + kinds)
      ->type_name("KIND");
  command.add_flag("-y,--overwrite", options.overwrite, "Replace outputs that exist");
  command.add_flag("--force", options.force, "With -y, even those that are write-protected");
  command.add_flag("--preserve-time", options.preserve_time,
                   "Give outputs the time at which their inputs were changed last");
  command
      .add_option("-j,--jobs", options.jobs,
                  "Inputs to convert at once; by default as many as there are processors")
      ->check(CLI::Range(1u, 256u))
      ->type_name("N");
}

void add_convert_options(CLI::App& command, ConvertOptions& options) {
  add_files(command, options);
  add_sound(command, options);
  add_cuts(command, options);
  add_care(command, options);
}

}  // namespace corvin::cli
