// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The options of corvin convert, as values: no text of an option is looked at anywhere else. What
// is to be had depends on the way that the conversion goes, so those not given have no value.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_OPTIONS_H_
#define CORVIN_CLI_COMMANDS_CONVERT_OPTIONS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/shard.h"
#include "cli/commands/commands.h"
#include "cli/commands/option_values.h"
#include "cli/cue/track_names.h"
#include "cli/files/output_kind.h"
#include "corvin.h"

namespace corvin::cli {

/** Which inputs share the gain that the loudest of them needs. */
enum class GainGroup { kFile, kDirectory, kAll };

struct ConvertOptions {
  std::vector<std::string> inputs;
  std::optional<std::string> output;  // by default beside the input, or in `directory`
  std::string directory;              // of -O
  std::vector<NamePattern> names;     // of --name: of directories, and last of the file
  bool recursive = false;
  std::optional<std::string> files_from;  // a list of more inputs; "-" for standard input
  bool is_list_zero_terminated = false;
  uint32_t jobs = 0;  // at once; 0: as fits the machine
  std::optional<OutputKind> kind;

  Engine engine = Engine::kStudio;
  std::optional<AskedRate> rate;
  std::optional<corvin_sample_format> format;
  std::optional<corvin_dither> dither;
  std::optional<corvin_phase> phase;
  std::optional<Gain> gain;
  GainGroup gain_group = GainGroup::kFile;
  std::optional<Band> lowpass;
  std::optional<corvin_modulator> modulator;

  bool gapless = false;
  std::optional<Position> skip;
  std::optional<Position> until;
  std::optional<std::vector<uint32_t>> channels;

  bool dry_run = false;
  bool skip_existing = false;
  std::optional<std::string> manifest;
  bool resume = false;
  std::optional<Shard> shard;
  bool sidecars = false;

  bool verify = false;
  bool strict = false;
  bool overwrite = false;
  bool force = false;
  bool preserve_time = false;
  bool dsd_only = false;  // of the inputs, for commands that take no others

  std::string sound_options;  // as given: all that have a say in the sound
};

/** Adds those of them that say which inputs are taken, how many at once, and what outputs may
 *  replace, for commands that name their outputs in another way. */
void add_writing_options(CLI::App& command, ConvertOptions& options);

/** Adds those of them that say where outputs go, for other commands too.
 *  @param kinds  of outputs: "dsf or dff; by default dsf" */
void add_output_options(CLI::App& command, ConvertOptions& options, const std::string& kinds);

/** Adds the options to `command`. Parsing fills `options`, which must outlive it. */
void add_convert_options(CLI::App& command, ConvertOptions& options);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_OPTIONS_H_
