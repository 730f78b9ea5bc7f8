// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The block of a FLAC file that says where tracks begin, as a cue sheet.

#ifndef CORVIN_CLI_CUE_FLAC_CUE_H_
#define CORVIN_CLI_CUE_FLAC_CUE_H_

#include <cstdint>
#include <optional>
#include <string>

#include "cli/cue/cue_sheet.h"

namespace corvin::cli {

/** The sheet of the FLAC file at `path`, its positions in frames of `rate_hz`; no value when it has
 *  none or is of another kind. Throws Failure for one that makes no sense. */
std::optional<CueSheet> flac_cue(const std::string& path, uint32_t rate_hz);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CUE_FLAC_CUE_H_
