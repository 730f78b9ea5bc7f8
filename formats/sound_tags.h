// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of a DSD file: names and comments of a DSDIFF file, then what ID3v2 blocks say.

#ifndef CORVIN_FORMATS_SOUND_TAGS_H_
#define CORVIN_FORMATS_SOUND_TAGS_H_

#include "corvin.h"
#include "formats/sound_file.h"

namespace corvin::formats {

/// Adds the tags that `file` has found to a record. Throws std::bad_alloc.
void ReadSoundTags(ByteSource& source, const SoundFile& file, DSD_TAG& tag);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SOUND_TAGS_H_
