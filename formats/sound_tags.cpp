// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/sound_tags.h"

#include <algorithm>
#include <array>
#include <vector>

#include "formats/tags/id3_block.h"
#include "formats/tags/tag_text.h"

namespace corvin::formats {
namespace {

void ReadText(ByteSource& source, const ByteRange& range, std::span<char> field) {
  if (range.bytes == 0) return;
  // A character more than the field holds, so that the cut falls between two.
  std::array<std::uint8_t, CORVIN_TAG_TEXT_BYTES + 4> text;
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(range.bytes, text.size()));
  const std::size_t count = source.Read(range.offset, text.data(), wanted);
  StoreText(TextEncoding::kUtf8, ByteSpan(text).first(count), field);
}

std::vector<std::uint8_t> ReadBlock(ByteSource& source, const ByteRange& range) {
  std::array<std::uint8_t, kId3HeaderBytes> header;
  if (range.bytes < header.size() ||
      source.Read(range.offset, header.data(), header.size()) != header.size()) {
    return {};
  }
  // Both bounds are within the file, so no more is taken than is there.
  std::vector<std::uint8_t> block(
      static_cast<std::size_t>(std::min(Id3BlockBytes(header), range.bytes)));
  block.resize(source.Read(range.offset, block.data(), block.size()));
  return block;
}

}  // namespace

void ReadSoundTags(ByteSource& source, const SoundFile& file, DSD_TAG& tag) {
  tag.format = file.kind;
  ReadText(source, file.title, tag.title);
  ReadText(source, file.artist, tag.artist);
  bool has_comment = false;
  for (const DsdiffComment& comment : file.comments) {
    if (tag.year == 0) tag.year = comment.year;
    if (!comment.is_general || comment.text.bytes == 0 || has_comment) continue;
    has_comment = true;
    ReadText(source, comment.text, tag.comment);
  }
  for (const ByteRange& range : file.id3) ReadId3Block(ReadBlock(source, range), tag);
}

}  // namespace corvin::formats
