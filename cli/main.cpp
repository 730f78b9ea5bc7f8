// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin: the library's command line. Here is only what all commands share.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/commands/help_format.h"
#include "cli/commands/manner_options.h"
#include "cli/commands/suggestion.h"
#include "cli/files/interrupt.h"
#include "cli/words/failure.h"
#include "cli/words/said.h"
#include "corvin.h"

namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 some of several inputs failed; 2 usage, which an output\n"
    "that exists is too; 3 unreadable or unsupported input; 4 write error;\n"
    "5 verification failed; 6 done, but damage was found; 128 + N ended by signal N.";

// A file opened later must not come to stand for a standard stream that the caller has closed, and get
// the words that are said on it. These refuse instead.
void occupy_closed_streams() {
  for (int stream = 0; stream <= 2; ++stream)
    if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY) < 0)
      _exit(corvin::cli::kWriteError);
}

int run(int argc, char** argv) {
  using namespace corvin::cli;
  int exit_code = kDone;
  CLI::App app("Looks into DSD files and converts them to PCM and back.", "corvin");
  app.set_version_flag("--version", std::string("corvin ") + corvin_version(),
                       "Print the version and exit");
  app.require_subcommand(1);
  app.footer(kExitCodes);
  app.formatter(std::make_shared<HelpFormat>());
  for (AddCommand* add : kCommands) add(app, exit_code);
  add_manner_options(app);
  // "corvin help CMD" is "corvin CMD --help".
  std::vector<std::string> words(argv + 1, argv + argc);
  if (!words.empty() && words[0] == "help") {
    words.erase(words.begin());
    words.emplace_back("--help");
  }
  if (words.empty()) {
    say(app.help());
    return kUsage;
  }
  try {
    std::reverse(words.begin(), words.end());  // the parser takes them from the end
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      app.exit(error);  // prints the help or the version
    } else {
      say_line(std::string("corvin: ") + error.what());
      const std::string meant = suggestion_for(app, app.remaining(true));
      if (!meant.empty()) say_line("corvin: " + meant);
      say_line("See corvin --help.");
      exit_code = kUsage;
    }
  } catch (const Failure& failure) {
    exit_code = report(failure);
  }
  std::cout.flush();
  if ((std::fflush(stdout) != 0 || std::ferror(stdout)) && exit_code == kDone)
    exit_code = report({kWriteError, "standard output", std::strerror(errno)});
  return with_damage(static_cast<ExitCode>(exit_code));
}

}  // namespace

int main(int argc, char** argv) {
  occupy_closed_streams();
  // A closed pipe or a file size limit is a write error like a full disk, not a reason to die with
  // a half-written file left behind.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  corvin::cli::end_on_interrupts();
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    corvin::cli::say_line(std::string("corvin: ") + error.what());
    return corvin::cli::kSomeInputsFailed;
  }
}
