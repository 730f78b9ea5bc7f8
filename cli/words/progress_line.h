// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The line that counts a conversion's percentage, on a terminal only.

#ifndef CORVIN_CLI_WORDS_PROGRESS_LINE_H_
#define CORVIN_CLI_WORDS_PROGRESS_LINE_H_

#include <unistd.h>

#include <cstdio>

namespace corvin::cli {

class ProgressLine {
 public:
  ~ProgressLine() { clear(); }

  void show(int percent) {
    if (!is_terminal_ || percent == shown_) return;
    shown_ = percent;
    std::fprintf(stderr, "\r%3d %%", percent);
  }

  void clear() {
    if (shown_ >= 0) std::fputs("\r     \r", stderr);
    shown_ = -1;
  }

 private:
  const bool is_terminal_ = isatty(STDERR_FILENO) == 1;
  int shown_ = -1;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_PROGRESS_LINE_H_
