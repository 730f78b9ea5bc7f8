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

#include <cstdlib>
#include <span>
#include <string>

namespace corvin::cli {
namespace {

constexpr size_t kMaxPictureBytes = 64 << 20;
constexpr int kFrontCover = 3;

template <size_t size>
void set_if_empty(char (&field)[size], const std::string& text) {
  if (field[0] == '\0') set_text(field, text);
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
  set_text(tags.title, property(properties, "TITLE"));
  set_text(tags.artist, property(properties, "ARTIST"));
  set_text(tags.album, property(properties, "ALBUM"));
  set_text(tags.comment, property(properties, "COMMENT"));
  set_if_empty(tags.comment, property(properties, "DESCRIPTION"));
  set_text(tags.track, property(properties, "TRACKNUMBER"));
  set_text(tags.genre, property(properties, "GENRE"));
  set_text(tags.composer, property(properties, "COMPOSER"));
  set_text(tags.rightsNotice, property(properties, "COPYRIGHT"));
  tags.year = year_of(property(properties, "DATE"));
}

void read_strings(const PcmInput& input, DSD_TAG& tags) {
  set_if_empty(tags.title, input.text(SF_STR_TITLE));
  set_if_empty(tags.artist, input.text(SF_STR_ARTIST));
  set_if_empty(tags.album, input.text(SF_STR_ALBUM));
  set_if_empty(tags.comment, input.text(SF_STR_COMMENT));
  set_if_empty(tags.track, input.text(SF_STR_TRACKNUMBER));
  set_if_empty(tags.genre, input.text(SF_STR_GENRE));
  set_if_empty(tags.rightsNotice, input.text(SF_STR_COPYRIGHT));
  if (tags.year == 0) tags.year = year_of(input.text(SF_STR_DATE));
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

void add_picture(const Picture& picture, Tags& tags) {
  if (picture.type == -1) return;
  const auto data = std::as_bytes(std::span(picture.data.data(), picture.data.size()));
  tags.add_picture(static_cast<uint8_t>(picture.type), picture.mime.to8Bit(true), data,
                   picture.description.to8Bit(true));
}

}  // namespace

Tags read_pcm_tags(const PcmInput& input) {
  Tags tags;
  const TagLib::FileRef file(input.path().c_str(), false);
  if (!file.isNull()) {
    read_texts(file.file()->properties(), tags);
    add_picture(choose_picture(file.file()), tags);
  }
  read_strings(input, tags);
  return tags;
}

}  // namespace corvin::cli
