// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of a PCM file, as the record that the library writes into a DSD file.

#ifndef CORVIN_CLI_FILES_PCM_TAGS_H_
#define CORVIN_CLI_FILES_PCM_TAGS_H_

#include "cli/files/pcm_input.h"
#include "corvin.hpp"

namespace corvin::cli {

/** The texts and the front cover (without one, the first picture) found in the file that `input`
 *  has open. Texts longer than their fields are cut after a character. */
Tags read_pcm_tags(const PcmInput& input);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_TAGS_H_
