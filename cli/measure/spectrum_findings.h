// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a spectrum tells: where a modulator's noise begins, and lines that stand out of noise.

#ifndef CORVIN_CLI_MEASURE_SPECTRUM_FINDINGS_H_
#define CORVIN_CLI_MEASURE_SPECTRUM_FINDINGS_H_

#include <optional>
#include <vector>

#include "cli/measure/spectrum.h"

namespace corvin::cli {

/** The noise that a modulator moves to high frequencies. */
struct RisingNoise {
  double begins_hz = 0;
  double third_octave = 0;                  // its power there, in a third of an octave
  std::optional<double> outweighs_hz = {};  // up to here it has the power of all that is below it
};

/** Where noise begins that rises by 20 dB and more: from there on the floor is 10 dB above the mean of
 *  the lowest half octave from 5 kHz on. A half octave, as the floor of a good modulator has deep notches.
 *  The floor is the median of a sixth of an octave, which tones do not lift. */
std::optional<RisingNoise> rising_noise(const Spectrum& spectrum);

struct Line {
  double hz = 0;
  double power = 0;
};

/** Lines that stand 15 dB or more out of the median of a third of an octave around them, from 20 Hz to
 *  20 kHz: the ten strongest, by their power. Noise alone, in a single window, does that
 *  once in some 10^9 bins. */
std::vector<Line> lines_of(const Spectrum& spectrum);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_SPECTRUM_FINDINGS_H_
