// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// By how much one file lags behind another of the same sound.

#ifndef CORVIN_CLI_MEASURE_SHIFT_SEARCH_H_
#define CORVIN_CLI_MEASURE_SHIFT_SEARCH_H_

#include <cstdint>
#include <optional>
#include <string>

#include "cli/measure/frame_source.h"

namespace corvin::cli {

struct Shift {
  int64_t samples = 0;  // of DSD, or frames of PCM: sample n of A is sample n + samples of B
  double gain = 1;      // of B in relation to A; below 0: of the other polarity
};

/** The shift of up to a second at which the two are most alike, found where A is loudest. No value when
 *  they are not alike: with a correlation below 0.5. Of DSD it is exact when the bits are the same, else to
 *  a frame of what is decoded for levels. Throws Failure. */
std::optional<Shift> find_shift(const std::string& path_a, const std::string& path_b,
                                const SoundFacts& facts);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_SHIFT_SEARCH_H_
