// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file of any kind, for those who look at its tags or change them.

#ifndef CORVIN_CLI_FILES_TAGGED_FILE_H_
#define CORVIN_CLI_FILES_TAGGED_FILE_H_

#include <string>

#include "cli/files/pcm_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

/** The tags of the DSD or PCM file at `path`. Throws Failure. */
TagSet tags_of_file(const std::string& path);

/** "TITLE, ARTIST, 2 pictures"; empty for tags without content. */
std::string contents_of(const TagSet& tags);

/** Says on standard error what the file at `path` cannot hold as it is. Throws Failure. */
void note_losses(const std::string& path, const TagSet& tags, corvin_id3_form form);

/** Says on standard error what a new PCM file of the kind does not hold of `tags`. */
void note_left_out(const std::string& path, PcmKind kind, const TagSet& tags);

/** Gives the DSF, DSDIFF, FLAC, WAV, RF64, AIFF or WavPack file at `path` these tags. Throws Failure; the file is as it was then.
 *  An interrupt waits for the end. */
void save_tags(const std::string& path, const TagSet& tags, corvin_id3_form form);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_TAGGED_FILE_H_
