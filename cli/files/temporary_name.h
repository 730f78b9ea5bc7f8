// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The names of unfinished files: hidden, beside the output, with its name and the process's number,
// so that a user knows what they are and the tool knows whose. What a process that was killed has left
// is known by that, and by the lock that a living one holds on its own.

#ifndef CORVIN_CLI_FILES_TEMPORARY_NAME_H_
#define CORVIN_CLI_FILES_TEMPORARY_NAME_H_

#include <string>

namespace corvin::cli {

class TemporaryName {
 public:
  /** For the output at `target`. */
  explicit TemporaryName(const std::string& target);

  /** "FOLDER/.song.wav.corvin-4711-0.part"; `attempt` tells names of one process apart. A long
   *  output's name is cut at the end of a character. */
  std::string path(int attempt) const;

  /** Removes what processes that live no more have left of this output. */
  void remove_stale() const;

 private:
  bool is_stale(const std::string& name) const;

  std::string directory_;  // with its slash; empty for the working one
  std::string beginning_;  // ".song.wav.corvin-"
};

/** Marks the open file as in use while it is open. */
void lock_temporary(int descriptor);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_TEMPORARY_NAME_H_
