// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of a DSD file: names and comments of a DSDIFF file, then what ID3v2 blocks say.

#ifndef CORVIN_FORMATS_SOUND_TAGS_H_
#define CORVIN_FORMATS_SOUND_TAGS_H_

#include "corvin.h"
#include "formats/sound_file.h"
#include "formats/tags/id3_tag_set.h"

namespace corvin::formats {

/// Adds the tags that `file` has found to a record. Throws std::bad_alloc.
void ReadSoundTags(ByteSource& source, const SoundFile& file, DSD_TAG& tag);

/// Reads all tags. Of several ID3v2 blocks the fields of a later one replace those of the same
/// name, and its pictures all; names and general comments of a DSDIFF file count where no block has
/// such a field. The `block` is the file's only one, when it is whole and all comes from it. Throws
/// std::bad_alloc.
void ReadSoundTags(ByteSource& source, const SoundFile& file, HeldTags& tags);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SOUND_TAGS_H_
