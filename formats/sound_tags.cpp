// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/sound_tags.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "formats/tags/id3_block.h"
#include "formats/tags/tag_text.h"
#include "formats/tags/utf8_text.h"

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

std::string ReadText(ByteSource& source, const ByteRange& range) {
  std::string text(static_cast<std::size_t>(range.bytes), '\0');
  text.resize(source.Read(range.offset, text.data(), text.size()));
  text.resize(std::min(text.size(), text.find('\0')));
  return Utf8OfUnknown(text);
}

void Merge(TagSet&& later, TagSet& to) {
  for (TagField& field : later.fields) {
    to.Remove(field.name);
    to.fields.push_back(std::move(field));
  }
  if (!later.pictures.empty()) to.pictures = std::move(later.pictures);
  for (KeptFrame& frame : later.frames) to.frames.push_back(std::move(frame));
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

void ReadSoundTags(ByteSource& source, const SoundFile& file, HeldTags& tags) {
  bool is_all_of_block = file.id3.size() == 1;
  for (const ByteRange& range : file.id3) {
    std::vector<std::uint8_t> block = ReadBlock(source, range);
    const std::uint64_t stated = Id3BlockBytes(block);
    TagSet set;
    if (!ReadId3TagSet(block, set, tags.warnings)) {
      is_all_of_block = false;
      tags.warnings.emplace_back("there is a tag of an unknown kind");
      continue;
    }
    is_all_of_block = is_all_of_block && block.size() == stated;
    Merge(std::move(set), tags.set);
    if (is_all_of_block) tags.block = std::move(block);
  }
  const auto add = [&](const char* name, const ByteRange& range) {
    std::string text = range.bytes == 0 ? "" : ReadText(source, range);
    if (text.empty()) return;
    tags.set.Add(name, {std::move(text), {}});
    tags.block.clear();
  };
  if (tags.set.Find("TITLE") == nullptr) add("TITLE", file.title);
  if (tags.set.Find("ARTIST") == nullptr) add("ARTIST", file.artist);
  if (tags.set.Find("COMMENT") != nullptr) return;
  constexpr std::size_t kMost = 256;
  std::size_t count = 0;
  for (const DsdiffComment& comment : file.comments) {
    if (comment.is_general && ++count <= kMost) add("COMMENT", comment.text);
  }
  if (count > kMost) tags.warnings.emplace_back("comments beyond the first 256 are left out");
}

}  // namespace corvin::formats
