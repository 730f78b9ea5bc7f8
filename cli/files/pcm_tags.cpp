// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// TagLib knows the tags of most kinds of files; the texts that libsndfile finds fill what it leaves
// empty.

#include "cli/files/pcm_tags.h"

#include <aifffile.h>
#include <attachedpictureframe.h>
#include <fileref.h>
#include <flacfile.h>
#include <id3v2tag.h>
#include <mpegfile.h>
#include <tpropertymap.h>
#include <wavfile.h>
#include <xiphcomment.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace corvin::cli {
namespace {

constexpr size_t kMaxPictureBytes = 64 << 20;
constexpr int kFrontCover = 3;

// `text` is UTF-8.
template <size_t size>
void put(char (&field)[size], std::string_view text) {
  size_t length = std::min(text.size(), size - 1);
  if (length < text.size())
    while (length > 0 && (static_cast<uint8_t>(text[length]) & 0xc0) == 0x80) --length;
  std::fill(std::begin(field), std::end(field), '\0');
  std::memcpy(field, text.data(), length);
}

template <size_t size>
void put_if_empty(char (&field)[size], std::string_view text) {
  if (field[0] == '\0') put(field, text);
}

// A year stands first in every way of writing dates that tags use.
int year_of(const std::string& date) {
  const long year = std::strtol(date.c_str(), nullptr, 10);
  return year >= 1 && year <= 9999 ? static_cast<int>(year) : 0;
}

std::string property(const TagLib::PropertyMap& properties, const char* name) {
  const auto found = properties.find(name);
  return found == properties.end() ? "" : found->second.toString("; ").to8Bit(true);
}

void read_texts(const TagLib::PropertyMap& properties, DSD_TAG& tags) {
  put(tags.title, property(properties, "TITLE"));
  put(tags.artist, property(properties, "ARTIST"));
  put(tags.album, property(properties, "ALBUM"));
  put(tags.comment, property(properties, "COMMENT"));
  put_if_empty(tags.comment, property(properties, "DESCRIPTION"));
  put(tags.track, property(properties, "TRACKNUMBER"));
  put(tags.genre, property(properties, "GENRE"));
  put(tags.composer, property(properties, "COMPOSER"));
  put(tags.rightsNotice, property(properties, "COPYRIGHT"));
  tags.year = year_of(property(properties, "DATE"));
}

void read_strings(const PcmSource& source, DSD_TAG& tags) {
  put_if_empty(tags.title, source.text(SF_STR_TITLE));
  put_if_empty(tags.artist, source.text(SF_STR_ARTIST));
  put_if_empty(tags.album, source.text(SF_STR_ALBUM));
  put_if_empty(tags.comment, source.text(SF_STR_COMMENT));
  put_if_empty(tags.track, source.text(SF_STR_TRACKNUMBER));
  put_if_empty(tags.genre, source.text(SF_STR_GENRE));
  put_if_empty(tags.rightsNotice, source.text(SF_STR_COPYRIGHT));
  if (tags.year == 0) tags.year = year_of(source.text(SF_STR_DATE));
}

// ---- Pictures -------------------------------------------------------------------------------

struct Picture {
  int type = -1;  // none
  TagLib::String mime, description;
  TagLib::ByteVector data;
};

void offer(Picture& chosen, const Picture& picture) {
  if (picture.data.isEmpty() || picture.data.size() > kMaxPictureBytes) return;
  if (chosen.type == -1 || (chosen.type != kFrontCover && picture.type == kFrontCover))
    chosen = picture;
}

void offer_all(Picture& chosen, const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
  for (const auto* picture : pictures)
    offer(chosen, {picture->type(), picture->mimeType(), picture->description(), picture->data()});
}

void offer_all(Picture& chosen, const TagLib::ID3v2::Tag* tag) {
  if (!tag) return;
  for (const auto* frame : tag->frameList("APIC"))
    if (const auto* picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame*>(frame))
      offer(chosen,
            {picture->type(), picture->mimeType(), picture->description(), picture->picture()});
}

Picture choose_picture(TagLib::File* file) {
  Picture chosen;
  if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(file)) {
    offer_all(chosen, flac->pictureList());
    offer_all(chosen, flac->ID3v2Tag());
  } else if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(file)) {
    offer_all(chosen, wav->ID3v2Tag());
  } else if (auto* aiff = dynamic_cast<TagLib::RIFF::AIFF::File*>(file)) {
    offer_all(chosen, aiff->tag());
  } else if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(file)) {
    offer_all(chosen, mpeg->ID3v2Tag());
  } else if (auto* xiph = dynamic_cast<TagLib::Ogg::XiphComment*>(file->tag())) {
    offer_all(chosen, xiph->pictureList());
  }
  return chosen;
}

void put_picture(const Picture& picture, DSD_TAG& tags) {
  if (picture.type == -1) return;
  DSD_PICTURE* entry = tags.PictureAlloc(1, static_cast<int>(picture.data.size()), false);
  if (!entry) return;
  entry->pictureType = static_cast<uint8_t>(picture.type);
  put(entry->mime, picture.mime.to8Bit(true));
  put(entry->description, picture.description.to8Bit(true));
  std::memcpy(entry->data, picture.data.data(), picture.data.size());
}

}  // namespace

void read_pcm_tags(const std::string& path, const PcmSource& source, DSD_TAG& tags) {
  const TagLib::FileRef file(path.c_str(), false);
  if (!file.isNull()) {
    read_texts(file.file()->properties(), tags);
    put_picture(choose_picture(file.file()), tags);
  }
  read_strings(source, tags);
}

}  // namespace corvin::cli
