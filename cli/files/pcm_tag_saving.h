// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// New tags for PCM files that are there. The file is written anew beside the old one and takes its
// name when it is complete on the disk: no failure harms the old file.

#ifndef CORVIN_CLI_FILES_PCM_TAG_SAVING_H_
#define CORVIN_CLI_FILES_PCM_TAG_SAVING_H_

#include <optional>
#include <string>

#include "cli/files/pcm_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

/** Which of FLAC, WAV, RF64, AIFF and WavPack the file at `path` is, by its content; no value: none
 *  of them, and it cannot be given tags. */
std::optional<PcmKind> taggable_kind(const std::string& path);

/** Gives the file at `path`, which is of this kind, these tags as far as it holds them. Throws Failure
 *  and Error. */
void save_pcm_tags(const std::string& path, PcmKind kind, const TagSet& tags, corvin_id3_form form);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_TAG_SAVING_H_
