// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags as the bytes that WAV, AIFF, CAF and WavPack files have behind their sound.

#ifndef CORVIN_CLI_FILES_TAG_BYTES_H_
#define CORVIN_CLI_FILES_TAG_BYTES_H_

#include <string>
#include <vector>

#include "cli/files/pcm_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

/** What a new file of the kind ends with: chunks of WAV, RF64, AIFF and CAF, the APEv2 tag of
 *  WavPack. Empty for tags without content and for kinds that have none there. Throws Error for an
 *  ID3v2 block that would be too large. */
std::vector<std::byte> tag_bytes(PcmKind kind, const TagSet& tags,
                                 corvin_id3_form form = CORVIN_ID3_AS_READ);

/** What a file of the kind does not hold of `tags`, "LYRICS, 2 pictures"; empty: it holds all. What
 *  ID3v2 changes is told by TagSet::losses(). */
std::string tags_left_out(PcmKind kind, const TagSet& tags);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_TAG_BYTES_H_
