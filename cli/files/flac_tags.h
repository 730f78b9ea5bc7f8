// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags as FLAC's metadata blocks: one of Vorbis comments, and one for each picture.

#ifndef CORVIN_CLI_FILES_FLAC_TAGS_H_
#define CORVIN_CLI_FILES_FLAC_TAGS_H_

#include <FLAC/metadata.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corvin.hpp"

namespace corvin::cli {

struct DeleteFlacBlock {
  void operator()(FLAC__StreamMetadata* block) const { FLAC__metadata_object_delete(block); }
};
using FlacBlock = std::unique_ptr<FLAC__StreamMetadata, DeleteFlacBlock>;

/** Whether Vorbis comments can have a field of this name. */
bool is_vorbis_name(std::string_view name);

/** Whether the 16 MiB of a block hold the picture. */
bool fits_flac(const Picture& picture);

/** Names the speakers, for orders of channels that FLAC does not have by itself. */
inline constexpr char kFlacSpeakers[] = "WAVEFORMATEXTENSIBLE_CHANNEL_MASK";

/** What a number of channels means unless a comment says otherwise. */
inline constexpr uint32_t kFlacUsualSpeakers[] = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x3f, 0x70f, 0x63f};

/** The blocks of all that fits. Throws std::bad_alloc.
 *  @param tags      null: none
 *  @param speakers  the text of #kFlacSpeakers; empty: none is needed */
std::vector<FlacBlock> flac_blocks(const TagSet* tags, const std::string& speakers);

/** A block as it stands in a file, without its head. */
struct RawFlacBlock {
  uint8_t type = 0;
  std::string content;
};

/** A file's blocks with the tags replaced. The order of channels and who made the file are kept. */
std::vector<RawFlacBlock> with_tags(std::vector<RawFlacBlock> blocks, const TagSet& tags);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_FLAC_TAGS_H_
