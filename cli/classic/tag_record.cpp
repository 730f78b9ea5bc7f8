// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/tag_record.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace corvin::cli {
namespace {

constexpr size_t kMaxPictureBytes = 64 << 20;
constexpr uint32_t kFrontCover = 3;

std::string joined(const TagSet& tags, const char* name) {
  std::string text;
  for (const std::string& value : tags.values(name)) text += (text.empty() ? "" : "; ") + value;
  return text;
}

// A year stands first in every way of writing dates that tags use.
int year_of(const std::string& date) {
  const long year = std::strtol(date.c_str(), nullptr, 10);
  return year >= 1 && year <= 9999 ? static_cast<int>(year) : 0;
}

}  // namespace

Tags record_of(const TagSet& tags) {
  Tags record;
  set_text(record.title, joined(tags, "TITLE"));
  set_text(record.artist, joined(tags, "ARTIST"));
  set_text(record.album, joined(tags, "ALBUM"));
  set_text(record.comment, joined(tags, "COMMENT"));
  const std::string total = tags.value("TRACKTOTAL");
  set_text(record.track, tags.value("TRACKNUMBER") + (total.empty() ? "" : "/" + total));
  set_text(record.genre, joined(tags, "GENRE"));
  set_text(record.composer, joined(tags, "COMPOSER"));
  set_text(record.rightsNotice, joined(tags, "COPYRIGHT"));
  record.year = year_of(tags.value("DATE"));

  std::vector<Picture> pictures = tags.pictures();
  std::erase_if(pictures, [](const Picture& picture) {
    return picture.data.empty() || picture.data.size() > kMaxPictureBytes;
  });
  const auto front = std::find_if(pictures.begin(), pictures.end(), [](const Picture& picture) {
    return picture.type == kFrontCover;
  });
  if (!pictures.empty()) {
    const Picture& chosen = front != pictures.end() ? *front : pictures.front();
    record.add_picture(static_cast<uint8_t>(chosen.type), chosen.mime, chosen.data,
                       chosen.description);
  }
  return record;
}

}  // namespace corvin::cli
