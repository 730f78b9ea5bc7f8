// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Pictures in APEv2 tags: items of binary data by a name for each type, which hold the name of a
// file, a zero byte and the picture. The file's name is where a description can be kept.

#ifndef CORVIN_CLI_FILES_APE_PICTURES_H_
#define CORVIN_CLI_FILES_APE_PICTURES_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cli/files/picture_mime.h"
#include "cli/files/tag_names.h"
#include "corvin.hpp"

namespace corvin::cli {

inline constexpr std::string_view kApePictureTypes[] = {
    "Other",
    "Icon",
    "Other Icon",
    "Front",
    "Back",
    "Leaflet",
    "Media",
    "Lead Artist",
    "Artist",
    "Conductor",
    "Band",
    "Composer",
    "Lyricist",
    "Recording Location",
    "During Recording",
    "During Performance",
    "Video Capture",
    "Fish",
    "Illustration",
    "Band Logotype",
    "Publisher Logotype",
};

/** "Cover Art (Front)". */
inline std::string ape_picture_name(uint32_t type) {
  const size_t known = type < std::size(kApePictureTypes) ? type : 0;
  return "Cover Art (" + std::string(kApePictureTypes[known]) + ")";
}

inline std::string ape_picture_value(const Picture& picture) {
  const std::string_view data(reinterpret_cast<const char*>(picture.data.data()),
                              picture.data.size());
  const std::string mime = mime_of(data);
  const std::string ending = mime == "image/jpeg" ? "jpg" : mime.substr(mime.find('/') + 1);
  return picture.description + "." + ending + '\0' + std::string(data);
}

/** The type of such an item; no value when its name is another one's. */
inline std::optional<uint32_t> ape_picture_type(std::string_view name) {
  for (uint32_t type = 0; type < std::size(kApePictureTypes); ++type)
    if (same_name(name, ape_picture_name(type))) return type;
  return {};
}

/** Adds the picture that an item holds. */
inline void add_ape_picture(uint32_t type, std::string_view value, TagSet& tags) {
  const size_t end = value.find('\0');
  if (end == std::string_view::npos) return;
  const std::string_view data = value.substr(end + 1);
  const std::string_view file = value.substr(0, end);
  tags.add_picture({type, mime_of(data), std::string(file.substr(0, file.rfind('.'))),
                    std::as_bytes(std::span(data))});
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_APE_PICTURES_H_
