// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags as such, apart from every way of writing them: named fields with any number of values,
// pictures, and the frames of ID3v2 that are neither. The names are those of Vorbis comments. This
// is not the record that the flat functions fill (DSD_TAG), which has room for a few short texts.

#ifndef CORVIN_FORMATS_TAGS_TAG_SET_H_
#define CORVIN_FORMATS_TAGS_TAG_SET_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/tags/tag_text.h"

namespace corvin::formats {

struct TagValue {
  std::string text;      ///< UTF-8, not empty
  std::string language;  ///< ISO 639-2, three characters, of comments and lyrics; empty: not known

  bool operator==(const TagValue&) const = default;
};

struct TagField {
  std::string name;
  std::vector<TagValue> values;  ///< at least one

  bool operator==(const TagField&) const = default;
};

struct TagPicture {
  std::uint8_t type = 0;  ///< of ID3v2, 3 = front cover
  std::string mime;
  std::string description;
  std::vector<std::uint8_t> data;

  bool operator==(const TagPicture&) const = default;
};

/// What stands about a frame of ID3v2 in front of its content.
struct Id3FrameHeader {
  std::string id;                  ///< four characters, as in version 2.4
  bool dropped_with_tag = false;   ///< when the tag is altered
  bool dropped_with_file = false;  ///< when the sound is altered
  bool read_only = false;
  std::optional<std::uint8_t> group;
  std::optional<std::uint8_t> encryption;
  bool is_compressed = false;
  std::uint32_t data_bytes = 0;  ///< of the content before compression and encryption

  bool IsPacked() const { return is_compressed || encryption.has_value(); }
  bool operator==(const Id3FrameHeader&) const = default;
};

/// A frame that is kept as it is.
struct KeptFrame {
  Id3FrameHeader header;
  std::vector<std::uint8_t> body;

  bool operator==(const KeptFrame&) const = default;
};

struct TagSet {
  std::vector<TagField> fields;  ///< in the order of their coming; no two of the same name
  std::vector<TagPicture> pictures;
  std::vector<KeptFrame> frames;

  /// Null when there is none of that name, whose letters may be of either case.
  const TagField* Find(std::string_view name) const;

  /// Adds a value to the field, which is made if need be. A value that the field has is not added
  /// again. False in that case.
  bool Add(std::string_view name, TagValue value);

  /// False when there is none.
  bool Remove(std::string_view name);

  bool IsEmpty() const { return fields.empty() && pictures.empty() && frames.empty(); }
  bool operator==(const TagSet&) const = default;
};

/// Whether two names differ in the case of ASCII letters at most.
bool IsSameName(std::string_view a, std::string_view b);

/// What stands behind the colon of a name like "COMMENT:description" when it begins with `base`;
/// empty without a colon. Nothing for any other name.
std::optional<std::string_view> DescriptionIn(std::string_view name, std::string_view base);

/// Whether values of the field have a language: comments and lyrics.
bool HasLanguages(std::string_view name);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_TAG_SET_H_
