// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// SIGINT, SIGTERM and SIGHUP end the tool at once and take the unfinished output with them. The
// handler itself removes the file and exits: a conversion tells its progress too seldom on a long
// file to wait for the next report.

#ifndef CORVIN_CLI_FILES_INTERRUPT_H_
#define CORVIN_CLI_FILES_INTERRUPT_H_

#include <signal.h>

#include <string>

namespace corvin::cli {

/** Holds the three signals back in this thread while it lives. Threads started meanwhile inherit
 *  that, so create and rename files under it, and start threads outside. */
class InterruptsHeld {
 public:
  InterruptsHeld();
  ~InterruptsHeld();
  InterruptsHeld(const InterruptsHeld&) = delete;
  InterruptsHeld& operator=(const InterruptsHeld&) = delete;

 private:
  sigset_t before_;
};

/** From now on an interrupt removes the file at `path` and exits with kInterrupted. An empty path:
 *  there is nothing to remove. Call it with the interrupts held and while no other thread runs. A
 *  signal that the caller of the tool chose to ignore (nohup) stays ignored. */
void remove_on_interrupt(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_INTERRUPT_H_
