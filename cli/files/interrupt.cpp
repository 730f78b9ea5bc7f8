// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/interrupt.h"

#include <unistd.h>

#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// Only changed while the signals are held and one thread runs, so the handler may read it.
std::string doomed_path;

extern "C" void end_interrupted(int) {
  if (!doomed_path.empty()) unlink(doomed_path.c_str());
  static constexpr char kMessage[] = "\ncorvin: interrupted\n";
  // The line feed ends the progress line, which only a terminal shows.
  const int skipped = isatty(STDERR_FILENO) ? 0 : 1;
  if (write(STDERR_FILENO, kMessage + skipped, sizeof kMessage - 1 - skipped) < 0) {
    // Nobody is left to tell.
  }
  _exit(kInterrupted);
}

}  // namespace

InterruptsHeld::InterruptsHeld() {
  sigset_t held;
  sigemptyset(&held);
  for (const int number : kSignals) sigaddset(&held, number);
  pthread_sigmask(SIG_BLOCK, &held, &before_);
}

InterruptsHeld::~InterruptsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

void remove_on_interrupt(const std::string& path) {
  doomed_path = path;
  for (const int number : kSignals) {
    struct sigaction action;
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = end_interrupted;
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
  }
}

}  // namespace corvin::cli
