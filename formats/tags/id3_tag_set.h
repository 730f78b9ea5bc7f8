// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags as ID3v2 has them: blocks of versions 2.2 to 2.4 are read, of 2.3 and 2.4 written.

#ifndef CORVIN_FORMATS_TAGS_ID3_TAG_SET_H_
#define CORVIN_FORMATS_TAGS_ID3_TAG_SET_H_

#include <cstdint>
#include <string>
#include <vector>

#include "formats/tags/id3_frames.h"
#include "formats/tags/tag_set.h"

namespace corvin::formats {

/// Tags, and where they come from.
struct HeldTags {
  TagSet set;
  std::vector<std::uint8_t> block;    ///< that holds the set and nothing else; empty: none does
  std::vector<std::string> warnings;  ///< sentences without subject on what could not be read
};

/// Adds what a block holds to a set. What cannot be understood is kept as a frame; what cannot be
/// kept is told in `warnings`. False when no block of a known version begins there.
bool ReadId3TagSet(ByteSpan block, TagSet& set, std::vector<std::string>& warnings);

/// Makes the block that holds a set; empty for an empty one. Version 2.4 has its texts in UTF-8,
/// 2.3 in UTF-16 and several values of a text joined by "/". False when the block would be larger
/// than one can be.
bool MakeId3Block(const TagSet& set, Id3Version version, std::vector<std::uint8_t>& block);

/// What of a set a block of this version would not give back: one sentence each, "DATE: ...".
std::vector<std::string> Id3Losses(const TagSet& set, Id3Version version);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_ID3_TAG_SET_H_
