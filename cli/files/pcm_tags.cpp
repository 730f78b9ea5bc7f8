// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// An ID3v2 block is read by the library. TagLib knows the other tags of most kinds of files; the
// texts that libsndfile finds fill what is still missing.

#include "cli/files/pcm_tags.h"

#include <apetag.h>
#include <fileref.h>
#include <flacfile.h>
#include <id3v2tag.h>
#include <infotag.h>
#include <mpegfile.h>
#include <sndfile.h>
#include <tpropertymap.h>
#include <wavfile.h>
#include <wavpackfile.h>
#include <xiphcomment.h>

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/files/ape_pictures.h"
#include "cli/files/caf_info.h"
#include "cli/files/flac_tags.h"
#include "cli/files/id3_chunk.h"
#include "cli/files/tag_names.h"
#include "cli/words/failure.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

// Other ways of naming a field.
constexpr TagName kAliases[] = {
    {"TOTALTRACKS", "TRACKTOTAL"}, {"TOTALDISCS", "DISCTOTAL"}, {"ALBUM ARTIST", "ALBUMARTIST"},
    {"UNSYNCEDLYRICS", "LYRICS"},  {"DESCRIPTION", "COMMENT"},  {"YEAR", "DATE"},
};

// What one source tells.
class Source {
 public:
  void add(std::string_view name, std::string value) {
    // Numbers with their totals, as ID3v2 has them.
    const bool is_number = name == "TRACKNUMBER" || name == "DISCNUMBER";
    const size_t slash = is_number ? value.find('/') : std::string::npos;
    if (slash != std::string::npos) {
      fields_.emplace_back(name == "TRACKNUMBER" ? "TRACKTOTAL" : "DISCTOTAL",
                           value.substr(slash + 1));
      value.resize(slash);
    }
    fields_.emplace_back(name, std::move(value));
  }

  /** Adds the fields that `tags` lacks. */
  void fill(TagSet& tags) const {
    std::vector<bool> is_missing;
    for (const auto& field : fields_) is_missing.push_back(tags.values(field.first).empty());
    for (size_t i = 0; i < fields_.size(); ++i) {
      const auto& [name, value] = fields_[i];
      if (is_missing[i] && !name.empty() && !value.empty()) tags.add(name, value);
    }
  }

 private:
  std::vector<std::pair<std::string, std::string>> fields_;
};

std::string utf8(const TagLib::String& text) {
  // A zero byte would end the value before its time.
  std::string bytes = text.to8Bit(true);
  bytes.resize(std::min(bytes.size(), bytes.find('\0')));
  return utf8_of(bytes);
}

void add_pictures(const TagLib::List<TagLib::FLAC::Picture*>& pictures, TagSet& tags) {
  for (const auto* picture : pictures) {
    const TagLib::ByteVector data = picture->data();
    constexpr int kMostTypes = 21;
    const int type = picture->type();
    tags.add_picture({type >= 0 && type < kMostTypes ? static_cast<uint32_t>(type) : 0,
                      utf8(picture->mimeType()), utf8(picture->description()),
                      std::as_bytes(std::span(data.data(), data.size()))});
  }
}

void add_comment(const TagLib::Ogg::XiphComment* comment, TagSet& tags) {
  if (comment == nullptr) return;
  Source source;
  for (const auto& [key, values] : comment->fieldListMap()) {
    const std::string name = utf8(key);
    if (name == kFlacSpeakers) continue;  // about the sound
    for (const auto& value : values) source.add(field_of(name, kAliases), utf8(value));
  }
  source.fill(tags);
}

void add_info(const TagLib::RIFF::Info::Tag* info, TagSet& tags) {
  if (info == nullptr) return;
  Source source;
  for (const auto& [id, value] : info->fieldListMap())
    source.add(field_of({id.data(), id.size()}, kInfoNames), utf8(value));
  source.fill(tags);
}

void add_ape(const TagLib::APE::Tag* tag, TagSet& tags) {
  if (tag == nullptr) return;
  Source source;
  for (const auto& [key, item] : tag->itemListMap()) {
    const std::string name = utf8(key);
    if (item.type() == TagLib::APE::Item::Binary) {
      const TagLib::ByteVector value = item.binaryData();
      if (const auto type = ape_picture_type(name))
        add_ape_picture(*type, {value.data(), value.size()}, tags);
    } else {
      const std::string_view field = field_of(field_of(name, kApeNames), kAliases);
      for (const auto& value : item.values()) source.add(field, utf8(value));
    }
  }
  source.fill(tags);
}

// The library understands more of it.
void add_id3(const TagLib::ID3v2::Tag* tag, TagSet& tags) {
  if (tag == nullptr || tag->isEmpty()) return;
  const TagLib::ByteVector block = tag->render();
  TagSet found;
  found.read_id3(std::as_bytes(std::span(block.data(), block.size())));
  Source source;
  for (const std::string& name : found.names())
    for (const std::string& value : found.values(name)) source.add(name, value);
  source.fill(tags);
  if (!tags.pictures().empty()) return;
  for (const Picture& picture : found.pictures()) tags.add_picture(picture);
}

void add_properties(const std::string& path, const TagLib::PropertyMap& properties, TagSet& tags) {
  Source source;
  for (const auto& [key, values] : properties)
    for (const auto& value : values) source.add(field_of(utf8(key), kAliases), utf8(value));
  source.fill(tags);
  for (const auto& name : properties.unsupportedData())
    note(path, "the tag " + utf8(name) + " cannot be read and is left out");
}

void add_all(const std::string& path, TagLib::File* file, TagSet& tags) {
  if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(file)) {
    add_comment(flac->xiphComment(), tags);
    add_pictures(flac->pictureList(), tags);
    if (flac->xiphComment()) add_pictures(flac->xiphComment()->pictureList(), tags);
    if (flac->hasID3v2Tag()) add_id3(flac->ID3v2Tag(), tags);
  } else if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file)) {
    add_info(wav->InfoTag(), tags);
  } else if (auto* wavpack = dynamic_cast<TagLib::WavPack::File*>(file)) {
    if (wavpack->hasAPETag()) add_ape(wavpack->APETag(), tags);
    if (wavpack->hasID3v1Tag()) add_properties(path, wavpack->properties(), tags);
  } else if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(file)) {
    if (mpeg->hasID3v2Tag()) add_id3(mpeg->ID3v2Tag(), tags);
    add_properties(path, mpeg->properties(), tags);
  } else if (auto* xiph = dynamic_cast<TagLib::Ogg::XiphComment*>(file->tag())) {
    add_comment(xiph, tags);
    add_pictures(xiph->pictureList(), tags);
  } else if (tags.empty()) {
    add_properties(path, file->properties(), tags);
  }
}

void add_strings(const PcmInput& input, TagSet& tags) {
  constexpr std::pair<const char*, int> kStrings[] = {
      {"TITLE", SF_STR_TITLE}, {"ARTIST", SF_STR_ARTIST},
      {"ALBUM", SF_STR_ALBUM}, {"COMMENT", SF_STR_COMMENT},
      {"GENRE", SF_STR_GENRE}, {"TRACKNUMBER", SF_STR_TRACKNUMBER},
      {"DATE", SF_STR_DATE},   {"COPYRIGHT", SF_STR_COPYRIGHT},
  };
  Source source;
  for (const auto& [name, kind] : kStrings) source.add(name, utf8_of(input.text(kind)));
  source.fill(tags);
}

void add_caf(const std::string& path, TagSet& tags) {
  Source source;
  for (const auto& [name, value] : caf_info(path)) {
    const std::string text = utf8_of(name);
    source.add(field_of(text, kCafNames), utf8_of(value));
  }
  source.fill(tags);
}

}  // namespace

TagSet read_pcm_tags(const PcmInput& input) {
  TagSet tags;
  try {
    if (const auto block = id3_chunk(input.path()); !block.empty()) tags.read_id3(block);
    const TagLib::FileRef file(input.path().c_str(), false);
    if (!file.isNull()) add_all(input.path(), file.file(), tags);
    add_caf(input.path(), tags);
    add_strings(input, tags);
  } catch (const Error& error) {
    note_damage(input.path(), std::string("some of its tags cannot be read: ") + error.what());
  }
  return tags;
}

TagSet read_wavpack_tags(const std::string& path) {
  TagSet tags;
  TagLib::WavPack::File file(path.c_str(), false);
  if (file.isValid()) add_all(path, &file, tags);
  return tags;
}

}  // namespace corvin::cli
