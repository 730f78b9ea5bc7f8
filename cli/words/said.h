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

/** Says whole lines on standard error, their characters as they are; when this thread holds its
 *  words, adds them to those. Any number of threads at once: lines of two of them do not mix. */
void say(std::string_view lines);

/** Says one line, without its end, made printable(). */
void say_line(std::string_view line);

/** Has the WordsHeld of this thread know that damage was noted. */
void hold_damage();

/** While it lives, what its thread says is held. Create and destroy it on that thread. Of several
 *  the latest holds. */
class WordsHeld {
 public:
  WordsHeld();
  /** Says what has not been taken, to whoever held before, or to standard error; who held before
   *  knows of damage, too. */
  ~WordsHeld();
  WordsHeld(const WordsHeld&) = delete;
  WordsHeld& operator=(const WordsHeld&) = delete;

  /** What was said since the last call, in whole lines, for another thread to say(). */
  std::string take();

  /** Whether damage has been noted. */
  bool is_damage_noted() const { return is_damage_noted_; }

 private:
  friend void say(std::string_view lines);
  friend void hold_damage();
  WordsHeld* outer_;
  std::string lines_;
  bool is_damage_noted_ = false;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_SAID_H_
