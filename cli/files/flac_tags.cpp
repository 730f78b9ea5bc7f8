// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/flac_tags.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <span>
#include <utility>

namespace corvin::cli {
namespace {

constexpr size_t kMostBlockBytes = (1 << 24) - 1;

FlacBlock new_block(FLAC__MetadataType type) {
  FlacBlock block(FLAC__metadata_object_new(type));
  if (!block) throw std::bad_alloc();
  return block;
}

void require(FLAC__bool done) {
  if (!done) throw std::bad_alloc();
}

void append(FLAC__StreamMetadata& comment, const std::string& name, const std::string& value) {
  std::string text = name + "=" + value;
  FLAC__StreamMetadata_VorbisComment_Entry entry{};
  entry.length = static_cast<FLAC__uint32>(text.size());
  entry.entry = reinterpret_cast<FLAC__byte*>(text.data());
  require(FLAC__metadata_object_vorbiscomment_append_comment(&comment, entry, true));
}

FlacBlock picture_block(const Picture& picture) {
  FlacBlock block = new_block(FLAC__METADATA_TYPE_PICTURE);
  auto& content = block->data.picture;
  content.type = static_cast<FLAC__StreamMetadata_Picture_Type>(picture.type);
  std::string mime = picture.mime;
  std::string description = picture.description;
  require(FLAC__metadata_object_picture_set_mime_type(block.get(), mime.data(), true));
  require(FLAC__metadata_object_picture_set_description(
      block.get(), reinterpret_cast<FLAC__byte*>(description.data()), true));
  // The library copies and does not change what it is given.
  auto* data = const_cast<std::byte*>(picture.data.data());
  require(FLAC__metadata_object_picture_set_data(block.get(), reinterpret_cast<FLAC__byte*>(data),
                                                 static_cast<FLAC__uint32>(picture.data.size()),
                                                 true));
  return block;
}

std::string number(uint32_t value, bool is_big_endian) {
  std::string bytes;
  for (int i = 0; i < 4; ++i)
    bytes += static_cast<char>(value >> (is_big_endian ? 24 - 8 * i : 8 * i));
  return bytes;
}

std::string counted_text(const void* text, uint32_t bytes, bool is_big_endian) {
  return number(bytes, is_big_endian) + std::string(static_cast<const char*>(text), bytes);
}

std::string content_of(const FLAC__StreamMetadata& block, const std::string& vendor) {
  if (block.type == FLAC__METADATA_TYPE_VORBIS_COMMENT) {
    const auto& all = block.data.vorbis_comment;
    std::string content = counted_text(vendor.data(), static_cast<uint32_t>(vendor.size()), false) +
                          number(all.num_comments, false);
    for (const auto& entry : std::span(all.comments, all.num_comments))
      content += counted_text(entry.entry, entry.length, false);
    return content;
  }
  const auto& picture = block.data.picture;
  const std::string_view mime = picture.mime_type;
  const std::string_view description = reinterpret_cast<const char*>(picture.description);
  const std::string sizes(16, '\0');  // in pixels and colours: not known
  return number(picture.type, true) +
         counted_text(mime.data(), static_cast<uint32_t>(mime.size()), true) +
         counted_text(description.data(), static_cast<uint32_t>(description.size()), true) + sizes +
         counted_text(picture.data, picture.data_length, true);
}

// The texts of a comment block as it stands in the file: who wrote it, then the comments.
std::vector<std::string> texts_in(std::string_view content) {
  std::vector<std::string> texts;
  const auto next_number = [&] {
    uint32_t value = 0;
    for (size_t i = 4; i-- > 0;) value = value << 8 | static_cast<uint8_t>(content[i]);
    content.remove_prefix(4);
    return value;
  };
  while (content.size() >= 4) {
    const uint32_t bytes = next_number();
    texts.emplace_back(content.substr(0, bytes));
    content.remove_prefix(std::min<size_t>(bytes, content.size()));
    if (texts.size() == 1 && content.size() >= 4) next_number();  // of the comments
  }
  return texts;
}

}  // namespace

bool is_vorbis_name(std::string_view name) {
  return std::all_of(name.begin(), name.end(),
                     [](char c) { return c >= 0x20 && c <= 0x7d && c != '='; });
}

bool fits_flac(const Picture& picture) {
  constexpr size_t kFixedBytes = 32;
  return picture.data.size() + picture.mime.size() + picture.description.size() + kFixedBytes <=
         kMostBlockBytes;
}

std::vector<FlacBlock> flac_blocks(const TagSet* tags, const std::string& speakers) {
  std::vector<FlacBlock> blocks;
  FlacBlock comment = new_block(FLAC__METADATA_TYPE_VORBIS_COMMENT);
  if (!speakers.empty()) append(*comment, kFlacSpeakers, speakers);
  for (const std::string& name : tags ? tags->names() : std::vector<std::string>()) {
    if (!is_vorbis_name(name)) continue;
    for (const std::string& value : tags->values(name)) append(*comment, name, value);
  }
  blocks.push_back(std::move(comment));
  for (const Picture& picture : tags ? tags->pictures() : std::vector<Picture>())
    if (fits_flac(picture)) blocks.push_back(picture_block(picture));
  return blocks;
}

std::vector<RawFlacBlock> with_tags(std::vector<RawFlacBlock> blocks, const TagSet& tags) {
  std::string vendor, speakers;
  std::vector<RawFlacBlock> kept, padding;
  for (RawFlacBlock& block : blocks) {
    if (block.type == FLAC__METADATA_TYPE_PADDING) {
      padding.push_back(std::move(block));
    } else if (block.type == FLAC__METADATA_TYPE_VORBIS_COMMENT) {
      const std::vector<std::string> texts = texts_in(block.content);
      const std::string start = std::string(kFlacSpeakers) + "=";
      for (size_t i = 0; i < texts.size(); ++i) {
        if (i == 0) vendor = texts[i];
        if (i > 0 && texts[i].starts_with(start)) speakers = texts[i].substr(start.size());
      }
    } else if (block.type != FLAC__METADATA_TYPE_PICTURE) {
      kept.push_back(std::move(block));
    }
  }
  for (const FlacBlock& block : flac_blocks(&tags, speakers))
    kept.push_back({static_cast<uint8_t>(block->type), content_of(*block, vendor)});
  std::move(padding.begin(), padding.end(), std::back_inserter(kept));
  return kept;
}

}  // namespace corvin::cli
