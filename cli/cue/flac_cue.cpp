// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/cue/flac_cue.h"

#include <FLAC/metadata.h>

#include <algorithm>
#include <memory>
#include <span>

#include "cli/files/flac_tags.h"
#include "cli/words/failure.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

// What ends the list is a track of this number at the end of the sound, by whether the sheet is of a CD.
constexpr uint32_t kLeadOuts[] = {170, 255};

bool is_lead_out(const FLAC__StreamMetadata_CueSheet_Track& track) {
  return std::find(std::begin(kLeadOuts), std::end(kLeadOuts), track.number) != std::end(kLeadOuts);
}

// Bytes of a field that zeros fill up.
template <size_t size>
std::string text_in(const char (&field)[size]) {
  return utf8_of(std::string(field, std::find(field, field + size, '\0')));
}

}  // namespace

std::optional<CueSheet> flac_cue(const std::string& path, uint32_t rate_hz) {
  FLAC__StreamMetadata* found = nullptr;
  if (!FLAC__metadata_get_cuesheet(path.c_str(), &found)) return {};
  const FlacBlock block(found);
  const auto& content = block->data.cue_sheet;
  CueSheet sheet;
  sheet.units_per_second = rate_hz;
  sheet.files.push_back(path);
  if (const std::string catalog = text_in(content.media_catalog_number); !catalog.empty())
    sheet.fields.emplace_back("BARCODE", catalog);
  uint64_t last = 0;
  for (const auto& from : std::span(content.tracks, content.num_tracks)) {
    if (is_lead_out(from)) break;
    CueTrack track;
    track.number = from.number;
    track.is_sound = from.type == 0;
    track.has_emphasis = from.pre_emphasis != 0;
    if (const std::string isrc = text_in(from.isrc); !isrc.empty())
      track.fields.emplace_back("ISRC", isrc);
    track.begin.position = from.offset;
    for (const auto& index : std::span(from.indices, from.num_indices)) {
      if (index.number == 0)
        track.pause = CuePlace{.file = 0, .position = from.offset + index.offset};
      if (index.number == 1) track.begin.position = from.offset + index.offset;
    }
    const bool is_next = sheet.tracks.empty() || track.number > sheet.tracks.back().number;
    if (track.number == 0 || !is_next || track.begin.position < last ||
        track.begin.position < from.offset)
      throw Failure(kBadInput, path, "has a cue sheet block whose tracks are in no order");
    last = track.begin.position;
    sheet.tracks.push_back(std::move(track));
  }
  if (sheet.tracks.empty()) return {};
  return sheet;
}

}  // namespace corvin::cli
