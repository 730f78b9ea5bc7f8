// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The directions and engines of corvin convert, and what they are asked for.

#ifndef CORVIN_CLI_CONVERT_CONVERT_H_
#define CORVIN_CLI_CONVERT_CONVERT_H_

#include <cstdint>
#include <string>

#include "cli/classic/dsd_source.h"
#include "cli/files/dsd_input.h"
#include "cli/words/exit_code.h"

namespace corvin::cli {

struct ConvertOptions {
  std::string input;
  std::string output;
  std::string engine = "studio";  // or classic
  std::string
      rate;  // as given; what it may be depends on the direction. Empty: chosen by the source's
  std::string bits;  // as --help lists them; empty: not given, like the four below
  std::string dither;
  std::string phase;
  std::string gain_db;
  std::string modulator;
  bool overwrite = false;

  /** The first option given that only the studio engine has; null without one. */
  const char* studio_option() const {
    return bits == "float"      ? "--bits float"
           : !dither.empty()    ? "--dither"
           : !phase.empty()     ? "--phase"
           : !gain_db.empty()   ? "--gain"
           : !modulator.empty() ? "--modulator"
                                : nullptr;
  }

  /** The first option given that says something about a WAV file; null without one. */
  const char* wav_option() const {
    return !bits.empty()     ? "--bits"
           : !dither.empty() ? "--dither"
           : !phase.empty()  ? "--phase"
                             : nullptr;
  }
};

/** Converts a DSD file to WAV, by the studio engine. */
ExitCode convert_to_wav(const ConvertOptions& options, StudioSource& source);

/** The same by the classic engine. */
ExitCode convert_to_wav_classic(const ConvertOptions& options, const DsdSource& source);

/** Converts a file that libsndfile reads to the DSD container that the output's name tells, by the
 *  studio engine. */
ExitCode convert_to_dsd(const ConvertOptions& options);

/** The same by the classic engine. */
ExitCode convert_to_dsd_classic(const ConvertOptions& options);

/** Converts a DSD file to another rate, or copies its sound to another container. */
ExitCode convert_dsd_to_dsd(const ConvertOptions& options, StudioSource& source);

/** The container kind 1..3 that the ending of a file name stands for; 0 for any other. */
int container_of(const std::string& path);

/** The PCM rate that a DSD file is converted to unless another is asked for. */
inline int default_pcm_rate_hz(uint32_t source_rate_hz) {
  return is_48k_family(source_rate_hz) ? 96000 : 88200;
}

/** Reads a whole number of Hz from 1 to `max_hz`; 0 when `text` is anything else. */
int parse_rate_hz(const std::string& text, int max_hz);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_CONVERT_H_
