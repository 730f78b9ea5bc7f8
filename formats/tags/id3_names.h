// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Which frame of ID3v2 holds which field, for frames whose values are just texts or one address.
// docs/tags.md shows the table.

#ifndef CORVIN_FORMATS_TAGS_ID3_NAMES_H_
#define CORVIN_FORMATS_TAGS_ID3_NAMES_H_

#include <string_view>

namespace corvin::formats {

/// What a field is to its frame.
struct Id3Name {
  std::string_view frame;  ///< its id
  std::string_view field;
  bool is_in_23 = true;         ///< else version 2.3 has no such frame
  std::string_view total = {};  ///< the field behind the slash of "3/12"
};

/// Null when there is none.
const Id3Name* Id3NameOfFrame(std::string_view frame);
const Id3Name* Id3NameOfField(std::string_view field);

/// The field whose total this is; null when it is none.
const Id3Name* Id3NameOfTotal(std::string_view field);

/// The field of a TXXX frame, and the description that a field gets there: one is the other unless
/// it is a name that taggers write in another way.
std::string_view FieldOfUserText(std::string_view description);
std::string_view UserTextOfField(std::string_view field);

/// Identifies the recordings that UFID frames of this owner name.
inline constexpr std::string_view kRecordingOwner = "http://musicbrainz.org";
inline constexpr std::string_view kRecordingField = "MUSICBRAINZ_TRACKID";

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_ID3_NAMES_H_
