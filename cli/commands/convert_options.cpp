// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_options.h"

#include <algorithm>

#include "cli/commands/choice_option.h"
#include "cli/commands/sound_choices.h"
#include "cli/commands/value_option.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

constexpr Choice<corvin_dither> kDithers[] = {
    {"none", CORVIN_DITHER_NONE},
    {"tpdf", CORVIN_DITHER_TPDF},
    {"shaped", CORVIN_DITHER_SHAPED},
};

constexpr Choice<GainGroup> kGainGroups[] = {
    {"file", GainGroup::kFile},
    {"dir", GainGroup::kDirectory},
    {"all", GainGroup::kAll},
};

// The options from one to another as they were given, in the order of --help.
std::string words_of(const CLI::App& command, size_t begin, size_t end) {
  std::string words;
  const std::vector<const CLI::Option*> options = command.get_options();
  for (size_t i = begin; i < end; ++i) {
    if (options[i]->count() == 0) continue;
    words += (words.empty() ? "" : " ") + options[i]->get_name();
    if (options[i]->get_type_size() == 0) continue;
    for (const std::string& value : options[i]->results()) words += " " + value;
  }
  return words;
}

void add_files(CLI::App& command, ConvertOptions& options) {
  command.add_option(
      "IN", options.inputs,
      "DSDIFF, DSF or 1bit files, told by their content; or PCM in any file that can "
      "be read (WAV, AIFF, FLAC, WavPack, Ogg...). - is standard input");
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
      ->check(one_of(kDithers));
  add_choice(command, "--phase", options.phase, kPhases,
             "Phase of the filters: linear, or minimum, which has no ringing ahead of a sound; by "
             "default linear")
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
      ->check(one_of(kGainGroups));
  add_choice(command, "--modulator", options.modulator, kModulators,
             "For DSD: standard, high or best, each with less noise and several times the work of "
             "the one before; by default high")
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

void add_batch(CLI::App& command, ConvertOptions& options) {
  command
      .add_option_function<std::string>(
          "--name",
          [&options](const std::string& text) {
            for (size_t begin = 0, end; begin <= text.size(); begin = end + 1) {
              end = std::min(text.find('/', begin), text.size());
              if (begin == end) throw Failure(kUsage, "--name", "has an empty name in it");
              options.names.emplace_back(text.substr(begin, end - begin), end < text.size());
            }
          },
          "Names of the outputs by their tags, such as \"{albumartist}/{album}/{track:02} "
          "{title}\": track, total, title, artist, album, albumartist, disc, date, genre, "
          "composer, isrc")
      ->type_name("PATTERN");
  auto* list = command
                   .add_option("--files-from", options.files_from,
                               "More inputs, from a file with one on each line, or - for standard "
                               "input; below -O they keep their directories")
                   ->type_name("LIST");
  command
      .add_flag("-0,--null", options.is_list_zero_terminated,
                "The list has zero bytes between its names, as find -print0 writes them")
      ->needs(list);
  command.add_flag("--dry-run", options.dry_run,
                   "Show what would become of each input, and write nothing");
  command.add_flag("--skip-existing", options.skip_existing,
                   "Leave out inputs whose output exists");
  auto* manifest = command
                       .add_option("--manifest", options.manifest,
                                   "Append a JSON object for each output to this file: paths, "
                                   "sizes, hash, options, level, seconds, exit code")
                       ->type_name("FILE");
  command
      .add_flag("--resume", options.resume,
                "Leave out what the manifest says is done and has not changed since")
      ->needs(manifest);
  command
      .add_option_function<std::string>(
          "--shard",
          [&options](const std::string& text) {
            options.shard = text == "auto" ? shard_of_slurm_array() : shard_in(text);
          },
          "Only the Ith of N parts of about equal size; inputs that share a gain or are one "
          "recording stay together. auto: as a task of a Slurm array")
      ->type_name("I/N")
      ->check([](const std::string& text) -> std::string {
        if (text != "auto") return shard_in(text) ? "" : text + " is not I/N, such as 3/8, or auto";
        return shard_of_slurm_array() ? "" : "auto needs the variables of a Slurm array's task";
      });
  command.add_flag("--sidecars", options.sidecars,
                   "Copy pictures and cue sheets beside the inputs to their outputs; in cue sheets "
                   "the files get their new names");
}

void add_care(CLI::App& command, ConvertOptions& options) {
  command.add_flag("--verify", options.verify, "Read each output back and compare");
  command.add_flag("--strict", options.strict,
                   "Write nothing for an input that is damaged or cut short, instead of converting "
                   "what is there");
  add_choice(command, "--engine", options.engine, kEngines,
             "studio, or classic, which converts two channels at the rates that it plans")
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
  add_value(command, "-f,--format", options.kind, output_kind_named,
            "flac, wav, rf64, w64, aiff, caf, wv, dsf, dff or 1bit",
            "Kind of the outputs: " + kinds)
      ->type_name("KIND");
  add_writing_options(command, options);
}

void add_writing_options(CLI::App& command, ConvertOptions& options) {
  command.add_flag("-R,--recursive", options.recursive,
                   "Take what is in directories, and below them");
  command.add_flag("-y,--overwrite", options.overwrite, "Replace outputs that exist");
  command.add_flag("--force", options.force, "With -y, even those that are write-protected");
  command.add_flag("--preserve-time", options.preserve_time,
                   "Give outputs the time at which their inputs were changed last");
  command
      .add_option("-j,--jobs", options.jobs,
                  "Inputs to work on at once; by default as many as there are processors")
      ->check(CLI::Range(1u, 256u))
      ->type_name("N");
}

void add_convert_options(CLI::App& command, ConvertOptions& options) {
  add_files(command, options);
  const size_t first_of_sound = command.get_options().size();
  add_sound(command, options);
  add_cuts(command, options);
  const size_t end_of_sound = command.get_options().size();
  add_batch(command, options);
  add_care(command, options);
  command.parse_complete_callback([&command, &options, first_of_sound, end_of_sound] {
    if (options.inputs.empty() && !options.files_from)
      throw CLI::RequiredError("IN or --files-from");
    options.sound_options = words_of(command, first_of_sound, end_of_sound);
  });
}

}  // namespace corvin::cli
