// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Standard error as the user sees it: words, and on a terminal below them the lines of the jobs that
// are at work, redrawn in place. All output to it goes through here, so that neither breaks the other.

#ifndef CORVIN_CLI_WORDS_SCREEN_H_
#define CORVIN_CLI_WORDS_SCREEN_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace corvin::cli {

/** Writes whole lines, above those of the jobs. Any thread, as the others. */
void print_words(std::string_view lines);

/** A line of its own on the screen while it lives. Where standard error is no terminal, nothing. */
class ScreenLine {
 public:
  /** @param text  the line for a width in character cells; called by any thread that draws, and not
   *               any more when the object is gone */
  explicit ScreenLine(std::function<std::string(size_t cells)> text);
  ~ScreenLine();
  ScreenLine(const ScreenLine&) = delete;
  ScreenLine& operator=(const ScreenLine&) = delete;

  /** Draws all lines, unless that was done less than a tenth of a second ago. */
  void refresh();

 private:
  friend class Screen;
  std::function<std::string(size_t cells)> text_;
};

/** Takes all lines off the screen for good and says that the tool was interrupted, unless whoever
 *  reads standard error keeps it waiting. */
void leave_screen();

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_SCREEN_H_
