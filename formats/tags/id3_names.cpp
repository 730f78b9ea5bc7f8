// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/id3_names.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "formats/tags/tag_set.h"

namespace corvin::formats {
namespace {

constexpr Id3Name kNames[] = {
    {"TIT2", "TITLE"},
    {"TIT3", "SUBTITLE"},
    {"TIT1", "GROUPING"},
    {"TPE1", "ARTIST"},
    {"TPE2", "ALBUMARTIST"},
    {"TPE3", "CONDUCTOR"},
    {"TPE4", "REMIXER"},
    {"TALB", "ALBUM"},
    {"TSST", "DISCSUBTITLE"},
    {"TRCK", "TRACKNUMBER", true, "TRACKTOTAL"},
    {"TPOS", "DISCNUMBER", true, "DISCTOTAL"},
    {"MVNM", "MOVEMENTNAME"},
    {"MVIN", "MOVEMENT", true, "MOVEMENTTOTAL"},
    {"TCON", "GENRE"},
    {"TDRC", "DATE"},
    {"TDOR", "ORIGINALDATE"},
    {"TDRL", "RELEASEDATE", false},
    {"TDEN", "ENCODINGTIME", false},
    {"TDTG", "TAGGINGDATE", false},
    {"TCOM", "COMPOSER"},
    {"TEXT", "LYRICIST"},
    {"TSOT", "TITLESORT"},
    {"TSOP", "ARTISTSORT"},
    {"TSOA", "ALBUMSORT"},
    {"TSO2", "ALBUMARTISTSORT"},
    {"TSOC", "COMPOSERSORT"},
    {"TOAL", "ORIGINALALBUM"},
    {"TOPE", "ORIGINALARTIST"},
    {"TOLY", "ORIGINALLYRICIST"},
    {"TOFN", "ORIGINALFILENAME"},
    {"TCOP", "COPYRIGHT"},
    {"TPRO", "PRODUCEDNOTICE", false},
    {"TPUB", "LABEL"},
    {"TSRC", "ISRC"},
    {"TMED", "MEDIA"},
    {"TMOO", "MOOD", false},
    {"TBPM", "BPM"},
    {"TKEY", "KEY"},
    {"TLAN", "LANGUAGE"},
    {"TLEN", "LENGTH"},
    {"TFLT", "FILETYPE"},
    {"TDLY", "PLAYLISTDELAY"},
    {"TCMP", "COMPILATION"},
    {"TENC", "ENCODEDBY"},
    {"TSSE", "ENCODERSETTINGS"},
    {"TOWN", "FILEOWNER"},
    {"TRSN", "RADIOSTATION"},
    {"TRSO", "RADIOSTATIONOWNER"},
    {"WCOP", "LICENSE"},
    {"WOAR", "WEBSITE"},
    {"WOAF", "FILEWEBPAGE"},
    {"WOAS", "AUDIOSOURCEWEBPAGE"},
    {"WORS", "RADIOSTATIONWEBPAGE"},
    {"WPAY", "PAYMENTWEBPAGE"},
    {"WPUB", "PUBLISHERWEBPAGE"},
};

constexpr std::pair<std::string_view, std::string_view> kUserTexts[] = {
    {"Acoustid Fingerprint", "ACOUSTID_FINGERPRINT"},
    {"Acoustid Id", "ACOUSTID_ID"},
    {"MusicBrainz Album Artist Id", "MUSICBRAINZ_ALBUMARTISTID"},
    {"MusicBrainz Album Id", "MUSICBRAINZ_ALBUMID"},
    {"MusicBrainz Album Release Country", "RELEASECOUNTRY"},
    {"MusicBrainz Album Status", "RELEASESTATUS"},
    {"MusicBrainz Album Type", "RELEASETYPE"},
    {"MusicBrainz Artist Id", "MUSICBRAINZ_ARTISTID"},
    {"MusicBrainz Disc Id", "MUSICBRAINZ_DISCID"},
    {"MusicBrainz Original Album Id", "MUSICBRAINZ_ORIGINALALBUMID"},
    {"MusicBrainz Original Artist Id", "MUSICBRAINZ_ORIGINALARTISTID"},
    {"MusicBrainz Release Group Id", "MUSICBRAINZ_RELEASEGROUPID"},
    {"MusicBrainz Release Track Id", "MUSICBRAINZ_RELEASETRACKID"},
    {"MusicBrainz TRM Id", "MUSICBRAINZ_TRMID"},
    {"MusicBrainz Work Id", "MUSICBRAINZ_WORKID"},
    {"MusicIP PUID", "MUSICIP_PUID"},
};

template <class Matches>
const Id3Name* NameThat(Matches matches) {
  const auto found = std::find_if(std::begin(kNames), std::end(kNames), matches);
  return found == std::end(kNames) ? nullptr : found;
}

}  // namespace

const Id3Name* Id3NameOfFrame(std::string_view frame) {
  return NameThat([&](const Id3Name& name) { return name.frame == frame; });
}

const Id3Name* Id3NameOfField(std::string_view field) {
  return NameThat([&](const Id3Name& name) { return IsSameName(name.field, field); });
}

const Id3Name* Id3NameOfTotal(std::string_view field) {
  return NameThat(
      [&](const Id3Name& name) { return !name.total.empty() && IsSameName(name.total, field); });
}

std::string_view FieldOfUserText(std::string_view description) {
  for (const auto& [text, field] : kUserTexts) {
    if (IsSameName(text, description)) return field;
  }
  return description;
}

std::string_view UserTextOfField(std::string_view field) {
  for (const auto& [text, name] : kUserTexts) {
    if (IsSameName(name, field)) return text;
  }
  return field;
}

}  // namespace corvin::formats
