// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Rates, counts, durations and levels in words.

#ifndef CORVIN_CLI_WORDS_MEASURES_H_
#define CORVIN_CLI_WORDS_MEASURES_H_

#include <cstdint>
#include <string>

namespace corvin::cli {

/** Whether the rate is a multiple of 48000 Hz rather than of 44100 Hz. */
bool is_48k_family(uint32_t rate_hz);

/** 48000 or 44100, as fits the rate's family; 44100 for a rate of neither. */
uint32_t base_rate_hz(uint32_t rate_hz);

/** Whether the rate is 44100 or 48000 Hz times a power of two from `least` to `most`. */
bool is_octave_of_base(uint32_t rate_hz, uint32_t least, uint32_t most);

/** The PCM rate that a DSD file is converted to unless another is asked for. */
uint32_t default_pcm_rate_hz(uint32_t dsd_rate_hz);

/** The rate of the studio engine's PCM, 44100 or 48000 Hz times 1 to 16, that keeps all of PCM of
 *  `rate_hz`: the nearest one at or above it, or the highest. */
uint32_t engine_rate_hz(uint32_t rate_hz);

/** "20000 Hz", in whole Hz. */
std::string hz_text(double hz);

/** "DSD64 (2822400 Hz)", with the multiple counted from 44100 Hz or 48000 Hz; the bare rate when it
 *  is no power of two from 64 up of either. */
std::string rate_name(uint32_t rate_hz);

/** "1 channel", "2 channels". */
std::string counted(uint64_t count, const std::string& noun);

/** "1:02:03.456", rounded down. */
std::string duration_text(uint64_t samples, uint32_t rate_hz);

/** "-6.02 dBFS". */
std::string dbfs_text(double db);

/** "peak -6.02 dBFS" for 0.5, "silent" for 0. */
std::string level_text(double peak);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_MEASURES_H_
