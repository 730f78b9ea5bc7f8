// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of a track out of those of the whole file and a cue sheet, and the other way round.

#ifndef CORVIN_CLI_CUE_TRACK_TAGS_H_
#define CORVIN_CLI_CUE_TRACK_TAGS_H_

#include <cstdint>
#include <string>

#include "cli/cue/cue_sheet.h"
#include "corvin.hpp"

namespace corvin::cli {

/** What a track is, for its tags. */
struct TrackPlace {
  const CueSheet* sheet = nullptr;  // null: the file was cut at times
  const CueTrack* track = nullptr;  // null: none of the sheet
  uint32_t number = 0;
  uint32_t total = 0;
};

/** The tags of a track: those of the whole file but what is said of the whole as one piece, over them
 *  those of the sheet, over them those of its track. */
TagSet tags_of_track(const TagSet& whole, const TrackPlace& place);

/** What tags of pieces have in common, as far as it can be said of the whole. */
class CommonTags {
 public:
  void add(const TagSet& piece);
  const TagSet& tags() const { return tags_; }

 private:
  TagSet tags_;
  bool is_first_ = true;
};

/** The fields of tags that a sheet can say of a whole or of a track. */
CueFields cue_fields_of_whole(const TagSet& tags);
CueFields cue_fields_of_track(const TagSet& tags);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CUE_TRACK_TAGS_H_
