// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin split: cuts a file into the tracks of a cue sheet, or at times.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/choice_option.h"
#include "cli/commands/commands.h"
#include "cli/commands/each_input.h"
#include "cli/commands/split_tracks.h"
#include "cli/commands/value_option.h"

namespace corvin::cli {
namespace {

constexpr Choice<Pregap> kPregaps[] = {
    {"keep", Pregap::kEndOfTrackBefore},
    {"drop", Pregap::kDrop},
};

std::optional<std::vector<Position>> positions_in(const std::string& text) {
  std::vector<Position> positions;
  for (size_t at = 0; at <= text.size();) {
    const size_t end = std::min(text.find(',', at), text.size());
    const auto position = position_in(text.substr(at, end - at));
    if (!position) return {};
    positions.push_back(*position);
    at = end + 1;
  }
  return positions;
}

}  // namespace

void add_split_command(CLI::App& app, int& exit_code) {
  CLI::App* command =
      app.add_subcommand("split", "Cut files into tracks, without a change to a sample");
  auto options = std::make_shared<SplitOptions>();
  command
      ->add_option("IN", options->inputs,
                   "DSD or PCM files, or cue sheets (.cue), which name files. - is standard input")
      ->required();
  command
      ->add_option("-O,--output-dir", options->directory,
                   "Directory for the tracks, made if it is missing")
      ->type_name("DIR")
      ->required();
  auto* cue = command
                  ->add_option("--cue", options->cue,
                               "Cue sheet to cut by; by default the one beside the file, of its "
                               "stem and .cue, else the one within it")
                  ->type_name("FILE");
  add_value(*command, "--at", options->cuts, positions_in,
            "a list of times such as 90s, 1:30 or 0:01:30.5, or of samples",
            "Times to cut at instead, with commas between: 1:30,4:00. As for convert --skip, also "
            "numbers of samples")
      ->type_name("TIMES")
      ->excludes(cue);
  command
      ->add_option(
          "--name", options->name,
          "Names of the tracks, by default \"{track:02} {title}\". In braces: track, total, "
          "title, artist, album, albumartist, disc, date, genre, composer, isrc; :02 fills "
          "up with zeros")
      ->type_name("PATTERN");
  add_choice(
      *command, "--pregap", options->pregap, kPregaps,
      "Sound between INDEX 00 and INDEX 01 of a track: keep, at the end of the track before, "
      "or as track 0 before the first; or drop. By default keep")
      ->type_name("WHAT")
      ->check(one_of(kPregaps));
  add_value(*command, "-f,--format", options->kind, output_kind_named,
            "flac, wav, rf64, w64, aiff, caf, wv, dsf, dff or 1bit",
            "Kind of the tracks: dsf, dff or 1bit for DSD; flac, wav, rf64, w64, aiff, caf or wv "
            "for PCM; by default the input's")
      ->type_name("KIND");
  command->add_flag("-y,--overwrite", options->overwrite, "Replace outputs that exist");
  command->add_flag("--force", options->force, "With -y, even those that are write-protected");
  command->add_flag("--verify", options->verify, "Read each output back and compare");
  command->callback([options, &exit_code] {
    Splitting splitting(*options);
    exit_code =
        for_each_input(options->inputs, [&](const std::string& path) { splitting.split(path); });
  });
}

}  // namespace corvin::cli
