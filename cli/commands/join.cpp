// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin join: puts files one behind the other, such as those of corvin split.

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/commands/commands.h"
#include "cli/commands/join_files.h"
#include "cli/commands/value_option.h"
#include "cli/words/failure.h"

namespace corvin::cli {

void add_join_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("join", "Put files one behind the other, bit for bit");
  auto options = std::make_shared<JoinOptions>();
  command
      ->add_option("IN", options->inputs,
                   "DSD files of one rate, in any containers, or PCM files of one rate and width, "
                   "in the order of the output. - is standard input")
      ->required();
  command
      ->add_option("-o,--output", options->output,
                   "File to write, of the kind that its ending says. - is standard output")
      ->type_name("FILE")
      ->required();
  add_value(*command, "-f,--format", options->kind, output_kind_named,
            "flac, wav, rf64, w64, aiff, caf, wv, dsf, dff or 1bit",
            "Kind of the output: dsf, dff or 1bit for DSD; flac, wav, rf64, w64, aiff, caf or wv "
            "for PCM")
      ->type_name("KIND");
  command
      ->add_option("--cue", options->cue,
                   "Cue sheet to write, which says where each input begins and what it is called")
      ->type_name("FILE");
  command->add_flag("-y,--overwrite", options->overwrite, "Replace outputs that exist");
  command->add_flag("--force", options->force, "With -y, even those that are write-protected");
  command->add_flag("--verify", options->verify, "Read the output back and compare");
  command->callback([options, &exit_code] {
    join_files(*options);
    exit_code = kDone;
  });
}

}  // namespace corvin::cli
