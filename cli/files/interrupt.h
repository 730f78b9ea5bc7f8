// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// SIGINT, SIGTERM and SIGHUP end the tool at once and take all unfinished outputs with them. A thread
// of its own waits for them, for a conversion tells its progress too seldom on a long file to wait
// for the next report, and unlike a handler it may wait for a renaming to be through.

#ifndef CORVIN_CLI_FILES_INTERRUPT_H_
#define CORVIN_CLI_FILES_INTERRUPT_H_

#include <string>

namespace corvin::cli {

/** From now on each of the signals removes the files that are to be removed, and the process dies of
 *  it, so that a shell's loop around the tool ends as well. Signals that the caller of the tool chose
 *  to ignore (nohup) stay ignored. Call it once, before any other thread runs: threads started later
 *  inherit that the signals are not theirs. */
void end_on_interrupts();

/** While one lives, an interrupt waits. Create and rename files under it. Any thread, any number. */
class InterruptsHeld {
 public:
  InterruptsHeld();
  ~InterruptsHeld();
  InterruptsHeld(const InterruptsHeld&) = delete;
  InterruptsHeld& operator=(const InterruptsHeld&) = delete;
};

/** An interrupt removes the file at `path`, until keep_on_interrupt() with the same path. Call both
 *  with the interrupts held, on any thread. */
void remove_on_interrupt(const std::string& path);
void keep_on_interrupt(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_INTERRUPT_H_
