// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of files that are not DSD, by the names that the library gives to fields.

#ifndef CORVIN_CLI_FILES_PCM_TAGS_H_
#define CORVIN_CLI_FILES_PCM_TAGS_H_

#include <string>

#include "cli/files/pcm_input.h"
#include "corvin.hpp"

namespace corvin::cli {

/** All that is found in the file that `input` has open. What cannot be taken is told on standard
 *  error. */
TagSet read_pcm_tags(const PcmInput& input);

/** The tags of the WavPack file at `path`, be its sound PCM or DSD. */
TagSet read_wavpack_tags(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_TAGS_H_
