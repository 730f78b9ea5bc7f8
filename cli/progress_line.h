// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The line that counts a conversion's percentage, on a terminal only.

#ifndef CORVIN_CLI_PROGRESS_LINE_H_
#define CORVIN_CLI_PROGRESS_LINE_H_

#include <unistd.h>

#include <cstdio>

namespace corvin::cli {

class ProgressLine {
 public:
  ~ProgressLine() { clear(); }

  void show(int percent) {
    if (!is_terminal_) return;
    std::fprintf(stderr, "\r%3d %%", percent);
    is_shown_ = true;
  }

  void clear() {
    if (is_shown_) std::fputs("\r     \r", stderr);
    is_shown_ = false;
  }

 private:
  const bool is_terminal_ = isatty(STDERR_FILENO) == 1;
  bool is_shown_ = false;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_PROGRESS_LINE_H_
