// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file with other tags: everything else is copied as it stands.

#ifndef CORVIN_FORMATS_TAG_REPLACEMENT_H_
#define CORVIN_FORMATS_TAG_REPLACEMENT_H_

#include "formats/bytes/byte_source.h"
#include "formats/container_tags.h"
#include "formats/sound_file.h"

namespace corvin::formats {

enum class Replaced {
  kYes,
  kUnfit,        ///< the file's parts do not follow each other as they say; nothing was written
  kReadFailed,   ///< the source
  kWriteFailed,  ///< the sink
};

/// Writes the file that `source` holds and `file` describes to `sink`, with other tags in place of
/// its own. Not for kOneBit. In DSDIFF general comments stay when the new tags have a comment of
/// their own, which readers prefer. Throws std::bad_alloc.
Replaced ReplaceTags(ByteSource& source, const SoundFile& file, const ContainerTags& tags,
                     ByteSink& sink);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAG_REPLACEMENT_H_
