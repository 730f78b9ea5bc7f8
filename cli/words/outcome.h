// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the conversions say when they are through: the line on the new file, and what is odd about
// the sound.

#ifndef CORVIN_CLI_WORDS_OUTCOME_H_
#define CORVIN_CLI_WORDS_OUTCOME_H_

#include <cstdint>
#include <initializer_list>
#include <string>

#include "cli/words/failure.h"

namespace corvin::cli {

/** Says "out.wav: 96000 Hz, 24 bits, ...", of "-" as standard output, on standard error, as the file itself may go to standard
 *  output; empty parts are left out. */
void print_summary(const std::string& path, std::initializer_list<std::string> parts);

/** For an input that states sound and has none. */
Failure no_convertible_sound(const std::string& path);

/** For an input without sound, which is no fault. */
void note_no_sound(const std::string& path);

/** Unless no sample was limited by the modulator. */
void note_limited(const std::string& path, uint64_t samples);

void note_cut_short(const std::string& path);

/** Says how many samples were clipped, unless none were. */
void note_clips(const std::string& path, uint64_t samples, const std::string& advice = "");

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_OUTCOME_H_
