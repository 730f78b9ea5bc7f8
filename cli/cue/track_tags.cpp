// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/cue/track_tags.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace corvin::cli {
namespace {

// Said of one piece of sound, and not of a part of it or of a longer one. A title is too, but cut at
// times the parts have no other.
constexpr const char* kOfOnePiece[] = {
    "CUESHEET",
    "TRACKNUMBER",
    "TRACKTOTAL",
    "ISRC",
    "LENGTH",
    "LYRICS",
    "MUSICBRAINZ_TRACKID",
    "MUSICBRAINZ_RELEASETRACKID",
    "ACOUSTID_ID",
    "ACOUSTID_FINGERPRINT",
    "REPLAYGAIN_TRACK_GAIN",
    "REPLAYGAIN_TRACK_PEAK",
    "REPLAYGAIN_TRACK_RANGE",
};

constexpr const char* kFieldsOfWhole[] = {"ALBUM",   "ALBUMARTIST", "DATE",
                                          "GENRE",   "DISCNUMBER",  "DISCTOTAL",
                                          "BARCODE", "COMMENT",     "COMPOSER"};
constexpr const char* kFieldsOfTrack[] = {"TITLE", "ARTIST", "COMPOSER", "ISRC"};

// By the block that holds all of them.
TagSet copy_of(const TagSet& tags) {
  TagSet copy;
  if (tags.empty()) return copy;
  const auto block = tags.write_id3(CORVIN_ID3_V24);
  copy.read_id3(block);
  return copy;
}

void remove_of_one_piece(TagSet& tags) {
  for (const char* name : kOfOnePiece) tags.remove(name);
}

void set_all(const CueFields& fields, TagSet& tags) {
  for (const auto& [name, value] : fields) tags.set(name, value);
}

template <size_t count>
CueFields fields_of(const TagSet& tags, const char* const (&names)[count]) {
  CueFields fields;
  for (const char* name : names)
    if (const std::string value = tags.value(name); !value.empty())
      fields.emplace_back(name, value);
  return fields;
}

bool has_picture(const TagSet& tags, const Picture& wanted) {
  const auto all = tags.pictures();
  return std::any_of(all.begin(), all.end(), [&](const Picture& one) {
    return one.type == wanted.type &&
           std::equal(one.data.begin(), one.data.end(), wanted.data.begin(), wanted.data.end());
  });
}

bool has_frame(const TagSet& tags, const TagFrame& wanted) {
  const auto all = tags.frames();
  return std::any_of(all.begin(), all.end(), [&](const TagFrame& one) {
    return one.id == wanted.id &&
           std::equal(one.data.begin(), one.data.end(), wanted.data.begin(), wanted.data.end());
  });
}

}  // namespace

TagSet tags_of_track(const TagSet& whole, const TrackPlace& place) {
  TagSet tags = copy_of(whole);
  remove_of_one_piece(tags);
  if (place.sheet != nullptr) {
    // The title of the whole is that of the album.
    if (place.track != nullptr || place.number == 0) tags.remove("TITLE");
    set_all(place.sheet->fields, tags);
    if (const std::string artist = field_value(place.sheet->fields, "ALBUMARTIST"); !artist.empty())
      tags.set("ARTIST", artist);
  }
  if (place.track != nullptr) set_all(place.track->fields, tags);
  tags.set("TRACKNUMBER", std::to_string(place.number));
  tags.set("TRACKTOTAL", std::to_string(place.total));
  return tags;
}

void CommonTags::add(const TagSet& piece) {
  if (std::exchange(is_first_, false)) {
    tags_ = copy_of(piece);
    return;
  }
  remove_of_one_piece(tags_);
  for (const std::string& name : tags_.names())
    if (piece.values(name) != tags_.values(name)) tags_.remove(name);
  for (size_t i = tags_.pictures().size(); i-- > 0;)
    if (!has_picture(piece, tags_.pictures()[i])) tags_.remove_picture(static_cast<uint32_t>(i));
  for (size_t i = tags_.frames().size(); i-- > 0;)
    if (!has_frame(piece, tags_.frames()[i])) tags_.remove_frame(static_cast<uint32_t>(i));
}

CueFields cue_fields_of_whole(const TagSet& tags) {
  CueFields fields = fields_of(tags, kFieldsOfWhole);
  // What all have for an artist stands for the whole.
  if (const std::string artist = tags.value("ARTIST");
      !artist.empty() && field_value(fields, "ALBUMARTIST").empty())
    fields.emplace_back("ALBUMARTIST", artist);
  return fields;
}

CueFields cue_fields_of_track(const TagSet& tags) { return fields_of(tags, kFieldsOfTrack); }

}  // namespace corvin::cli
