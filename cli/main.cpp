// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin: the library's command line. Here is only what all commands share.

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

#include "cli/commands/commands.h"
#include "cli/words/exit_code.h"
#include "corvin.h"

namespace {

#define CORVIN_TEXT_(number) #number
#define CORVIN_TEXT(number) CORVIN_TEXT_(number)
constexpr const char* kVersion = "corvin " CORVIN_TEXT(CORVIN_VERSION_MAJOR) "." CORVIN_TEXT(
    CORVIN_VERSION_MINOR) "." CORVIN_TEXT(CORVIN_VERSION_PATCH);

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 some of several inputs failed; 2 usage; 3 unreadable or\n"
    "unsupported input; 4 write error; 130 interrupted.";

int run(int argc, char** argv) {
  using namespace corvin::cli;
  int exit_code = kDone;
  CLI::App app("Looks into DSD files and converts them to PCM and back.", "corvin");
  app.set_version_flag("--version", kVersion, "Print the version and exit");
  app.require_subcommand(1);
  app.footer(kExitCodes);
  add_info_command(app, exit_code);
  add_tags_command(app, exit_code);
  add_convert_command(app, exit_code);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      app.exit(error);  // prints the help or the version
    } else {
      std::fprintf(stderr, "corvin: %s\nSee corvin --help.\n", error.what());
      exit_code = kUsage;
    }
  }
  std::cout.flush();
  if ((std::fflush(stdout) != 0 || std::ferror(stdout)) && exit_code == kDone)
    exit_code = report("standard output", {kWriteError, std::strerror(errno)});
  return exit_code;
}

}  // namespace

int main(int argc, char** argv) {
  // A closed pipe or a file size limit is a write error like a full disk, not a reason to die with
  // a half-written file left behind.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "corvin: %s\n", error.what());
    return corvin::cli::kSomeInputsFailed;
  }
}
