// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The one way of words to standard error. Several jobs may run at once, each on a thread of its own:
// what one says is held until it is through, so that its lines stand together.

#ifndef CORVIN_CLI_WORDS_SAID_H_
#define CORVIN_CLI_WORDS_SAID_H_

#include <string>
#include <string_view>

namespace corvin::cli {

/** Says a line on standard error, without its end and made printable(); when this thread holds its
 *  words, adds it to those. Any number of threads at once: lines of two of them do not mix. */
void say(std::string_view line);

/** Says what was taken from a WordsHeld. */
void say_lines(std::string_view lines);

/** While it lives, what its thread says is held. Create and destroy it on that thread. Of several
 *  the latest holds. */
class WordsHeld {
 public:
  WordsHeld();
  /** Says what has not been taken, to whoever held before, or to standard error. */
  ~WordsHeld();
  WordsHeld(const WordsHeld&) = delete;
  WordsHeld& operator=(const WordsHeld&) = delete;

  /** What was said since the last call, in whole lines, for another thread to say_lines(). */
  std::string take();

 private:
  friend void say_lines(std::string_view lines);
  WordsHeld* outer_;
  std::string lines_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_SAID_H_
