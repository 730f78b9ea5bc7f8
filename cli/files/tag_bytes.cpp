// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/tag_bytes.h"

#include <algorithm>
#include <set>
#include <span>
#include <string_view>

#include "cli/files/ape_pictures.h"
#include "cli/files/flac_tags.h"
#include "cli/files/tag_names.h"
#include "cli/words/measures.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

// More than any reader takes: a tag beyond it would be no tag.
constexpr size_t kMostApeBytes = 16 << 20;

std::string little_endian(uint64_t number, int width = 4) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(number >> 8 * i);
  return bytes;
}

std::string big_endian(uint64_t number, int width = 4) {
  std::string bytes = little_endian(number, width);
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

// ---- RIFF and AIFF ------------------------------------------------------------------------------

std::string padded(std::string content) {
  if (content.size() % 2 != 0) content += '\0';
  return content;
}

std::string riff_chunk(const char* id, const std::string& content) {
  return id + little_endian(content.size()) + padded(content);
}

std::string info_list(const TagSet& tags) {
  std::string all;
  for (const std::string& field : tags.names()) {
    const std::string_view name = name_of(field, kInfoNames);
    if (name.empty()) continue;
    all += riff_chunk(std::string(name).c_str(), joined_values(tags, field) + '\0');
  }
  return all.empty() ? "" : riff_chunk("LIST", "INFO" + all);
}

std::string id3_block(const TagSet& tags, corvin_id3_form form) {
  const std::vector<std::byte> block = tags.write_id3(form);
  return {reinterpret_cast<const char*>(block.data()), block.size()};
}

std::string riff_tags(const TagSet& tags, corvin_id3_form form) {
  return info_list(tags) + riff_chunk("id3 ", id3_block(tags, form));
}

std::string aiff_tags(const TagSet& tags, corvin_id3_form form) {
  const std::string block = id3_block(tags, form);
  return "ID3 " + big_endian(block.size()) + padded(block);
}

// ---- CAF ----------------------------------------------------------------------------------------

std::string caf_tags(const TagSet& tags) {
  std::string texts;
  uint32_t count = 0;
  for (const std::string& field : tags.names()) {
    const std::string_view name = name_of(field, kCafNames);
    if (name.empty()) continue;
    texts += std::string(name) + '\0' + joined_values(tags, field) + '\0';
    ++count;
  }
  if (count == 0) return {};
  return "info" + big_endian(4 + texts.size(), 8) + big_endian(count) + texts;
}

// ---- APEv2 --------------------------------------------------------------------------------------

bool is_ape_name(std::string_view name) {
  for (const char* kept : {"ID3", "TAG", "OggS", "MP+"})
    if (same_name(name, kept)) return false;
  return name.size() >= 2 && name.size() <= 255 &&
         std::all_of(name.begin(), name.end(), [](char c) { return c >= 0x20 && c <= 0x7e; });
}

std::string ape_item(const std::string& name, const std::string& value, uint32_t flags) {
  return little_endian(value.size()) + little_endian(flags) + name + '\0' + value;
}

// "3/12": the total belongs to the first number, and stands alone when there is none.
std::string ape_value(const TagSet& tags, const std::string& field) {
  std::vector<std::string> values = tags.values(field);
  if (field == "TRACKNUMBER" || field == "DISCNUMBER") {
    const std::string total = tags.value(field == "TRACKNUMBER" ? "TRACKTOTAL" : "DISCTOTAL");
    if (!total.empty()) values[0] += "/" + total;
  }
  std::string all = values[0];
  for (size_t i = 1; i < values.size(); ++i) all += '\0' + values[i];
  return all;
}

bool is_told_with_its_number(const TagSet& tags, const std::string& field) {
  const char* number = field == "TRACKTOTAL"  ? "TRACKNUMBER"
                       : field == "DISCTOTAL" ? "DISCNUMBER"
                                              : nullptr;
  return number && !tags.value(number).empty() && tags.values(field).size() == 1;
}

constexpr size_t kApeEndBytes = 32;

std::string ape_end(size_t items_bytes, size_t items, uint32_t flags) {
  return "APETAGEX" + little_endian(2000) + little_endian(items_bytes + kApeEndBytes) +
         little_endian(items) + little_endian(flags) + std::string(8, '\0');
}

// The pictures that find a place: one of each type, as far as they fit.
std::vector<bool> ape_pictures(const TagSet& tags, size_t bytes) {
  std::set<uint32_t> types;
  std::vector<bool> taken;
  for (const Picture& picture : tags.pictures()) {
    bytes += picture.data.size() + 1024;
    taken.push_back(bytes < kMostApeBytes && types.insert(picture.type).second);
  }
  return taken;
}

size_t text_bytes(const TagSet& tags) {
  size_t bytes = 0;
  for (const std::string& field : tags.names())
    for (const std::string& value : tags.values(field)) bytes += value.size() + field.size() + 16;
  return bytes;
}

std::string ape_tag(const TagSet& tags) {
  std::string items;
  size_t count = 0;
  for (const std::string& field : tags.names()) {
    if (is_told_with_its_number(tags, field) || !is_ape_name(field)) continue;
    const std::string_view name = name_of(field, kApeNames);
    items += ape_item(name.empty() ? field : std::string(name), ape_value(tags, field), 0);
    ++count;
  }
  const std::vector<Picture> pictures = tags.pictures();
  const std::vector<bool> taken = ape_pictures(tags, text_bytes(tags));
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (!taken[i]) continue;
    constexpr uint32_t kBinary = 2;
    items += ape_item(ape_picture_name(pictures[i].type), ape_picture_value(pictures[i]), kBinary);
    ++count;
  }
  if (count == 0) return {};
  constexpr uint32_t kHasHeader = 0x80000000;
  constexpr uint32_t kIsHeader = 0x20000000;
  return ape_end(items.size(), count, kHasHeader | kIsHeader) + items +
         ape_end(items.size(), count, kHasHeader);
}

// ---- What is left out ---------------------------------------------------------------------------

bool holds_field(PcmKind kind, const std::string& field) {
  switch (kind) {
    case PcmKind::kFlac:
      return is_vorbis_name(field);
    case PcmKind::kWavPack:
      return is_ape_name(field);
    case PcmKind::kCaf:
      return !name_of(field, kCafNames).empty();
    default:
      return kind != PcmKind::kW64;
  }
}

std::vector<bool> pictures_held(PcmKind kind, const TagSet& tags) {
  if (kind == PcmKind::kWavPack) return ape_pictures(tags, text_bytes(tags));
  std::vector<bool> held;
  for (const Picture& picture : tags.pictures())
    held.push_back(kind == PcmKind::kFlac ? fits_flac(picture)
                                          : kind != PcmKind::kCaf && kind != PcmKind::kW64);
  return held;
}

bool has_id3(PcmKind kind) {
  return kind == PcmKind::kWav || kind == PcmKind::kRf64 || kind == PcmKind::kAiff;
}

}  // namespace

std::vector<std::byte> tag_bytes(PcmKind kind, const TagSet& tags, corvin_id3_form form) {
  if (tags.empty()) return {};
  const std::string bytes = kind == PcmKind::kAiff      ? aiff_tags(tags, form)
                            : has_id3(kind)             ? riff_tags(tags, form)
                            : kind == PcmKind::kCaf     ? caf_tags(tags)
                            : kind == PcmKind::kWavPack ? ape_tag(tags)
                                                        : "";
  const auto all = std::as_bytes(std::span(bytes));
  return {all.begin(), all.end()};
}

std::string tags_left_out(PcmKind kind, const TagSet& tags) {
  std::string list;
  const auto add = [&](const std::string& one) { list += (list.empty() ? "" : ", ") + one; };
  for (const std::string& field : tags.names())
    if (!holds_field(kind, field)) add(printable(field));
  const std::vector<bool> held = pictures_held(kind, tags);
  const auto lost = std::count(held.begin(), held.end(), false);
  if (lost != 0) add(counted(static_cast<uint64_t>(lost), "picture"));
  if (!has_id3(kind) && !tags.frames().empty()) add(counted(tags.frames().size(), "other frame"));
  return list;
}

}  // namespace corvin::cli
