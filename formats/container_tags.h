// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags on their way into a container: the ID3v2 block, and what DSDIFF says in its own chunks.

#ifndef CORVIN_FORMATS_CONTAINER_TAGS_H_
#define CORVIN_FORMATS_CONTAINER_TAGS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "formats/tags/tag_set.h"

namespace corvin::formats {

struct ContainerTags {
  std::vector<std::uint8_t> id3;  ///< empty: no block
  /// For readers of DSDIFF's edited master information; empty: not told.
  std::string title, artist;
  bool has_comment = false;  ///< in the block
};

/// The block with what DSDIFF tells beside it.
ContainerTags MakeContainerTags(const TagSet& set, std::vector<std::uint8_t> id3);

/// The chunks at the end of a DSDIFF file, padded. `master` are chunks of the edited master
/// information beside the names, padded too.
std::vector<std::uint8_t> DsdiffTagChunks(const ContainerTags& tags, ByteSpan master = {});

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_CONTAINER_TAGS_H_
