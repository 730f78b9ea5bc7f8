// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// ID3v2 blocks in memory. Reading takes what real files carry: versions 2.3 and 2.4, with
// unsynchronisation, extended headers and comments in any language, brought into the form that the
// reader of plain 2.3 blocks knows.

#ifndef CORVIN_FORMATS_TAGS_ID3_BLOCK_H_
#define CORVIN_FORMATS_TAGS_ID3_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "corvin.h"
#include "formats/tags/tag_text.h"

namespace corvin::formats {

inline constexpr std::size_t kId3HeaderBytes = 10;

/// The size of the block that begins with `header` (kId3HeaderBytes), header and footer included; 0
/// when none begins there.
std::uint64_t Id3BlockBytes(ByteSpan header);

/// Reads a whole block into a record as Read_id3tag_v2() would read a plain one. Of the comments
/// the first with an empty description counts, else the first. False when it holds no frame. Throws
/// std::bad_alloc.
bool ReadId3Block(ByteSpan block, DSD_TAG& tag);

/// Reads the frames of a plain 2.3 block. 0 when there is one, 1 when there is none, -1 when memory
/// runs out.
int ReadId3Frames(ByteSpan frames, DSD_TAG& tag);

/// The block that Write_id3tag_v2() would write. Empty for an empty record, and for one that no
/// block can hold.
std::vector<std::uint8_t> MakeId3Block(const DSD_TAG& tag);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_ID3_BLOCK_H_
