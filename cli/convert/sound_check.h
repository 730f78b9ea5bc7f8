// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What listening to a file shows that its headers do not: whether its sound can be read to its end, how
// loud it is, and whether bits that are said to be DSD are any.

#ifndef CORVIN_CLI_CONVERT_SOUND_CHECK_H_
#define CORVIN_CLI_CONVERT_SOUND_CHECK_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/files/dsd_input.h"
#include "cli/files/pcm_input.h"

namespace corvin::cli {

/** Sentences without subject. */
struct SoundCheck {
  std::vector<std::string> damage;   // what is not as it should be
  std::vector<std::string> remarks;  // what may be meant so
  uint64_t samples = 0;              // of each channel, that could be read
  std::optional<double> peak;        // 1.0 is full scale; when it was decoded
};

/** Reads the sound of a file to its end.
 *  @param name    by which progress is told
 *  @param decode  looks at levels, too, for which DSD is decoded. Throws Failure */
SoundCheck check_sound(DsdInput& input, const std::string& name, bool decode);
SoundCheck check_sound(PcmInput& input, const std::string& name, bool decode);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_SOUND_CHECK_H_
