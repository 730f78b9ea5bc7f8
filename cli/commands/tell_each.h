// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Commands that tell something of each input on standard output: a text, or with --json an array of an
// object for each. Inputs are looked at side by side, and told of in their order.

#ifndef CORVIN_CLI_COMMANDS_TELL_EACH_H_
#define CORVIN_CLI_COMMANDS_TELL_EACH_H_

#include <functional>
#include <string>
#include <vector>

#include "cli/files/tags_json.h"
#include "cli/words/failure.h"

namespace CLI {
class App;
}

namespace corvin::cli {

/** What a command was asked to look at, and how to tell of it. */
struct TellOptions {
  std::vector<std::string> paths;
  bool recursive = false;
  unsigned jobs = 0;  // at once; 0: as many as there are processors
  bool as_json = false;
};

/** Adds FILE, -R, -j and --json to a command; `options` must outlive the parsing. */
void add_tell_options(CLI::App& command, TellOptions& options, const std::string& files);

/** Where something is, and what it is called. They differ for what came through a pipe. */
struct Subject {
  std::string path;
  std::string name;
};

/** What is told of one input. */
struct Told {
  std::string text;  // whole lines, for people
  Json object = Json::object();
};

/** Has `look` fill in what it finds of each input. It is called on any thread; what it throws as a
 *  Failure becomes the object's "error", and what was filled in by then is told.
 *  @return  the exit code of all inputs together */
ExitCode tell_each(const TellOptions& options,
                   const std::function<void(const Subject&, Told&)>& look);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_TELL_EACH_H_
