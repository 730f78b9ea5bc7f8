// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/cue/track_spans.h"

#include <algorithm>

#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

// At a rate that is no multiple of the units, the nearest sample.
uint64_t at_rate(uint64_t position, uint32_t units_per_second, uint32_t rate_hz) {
  if (units_per_second == rate_hz) return position;
  if (position > UINT64_MAX / rate_hz - units_per_second) return UINT64_MAX;
  return (position * rate_hz + units_per_second / 2) / units_per_second;
}

std::string track_name(const TrackSpan& span) { return "track " + std::to_string(span.number); }

}  // namespace

std::vector<TrackSpan> spans_of_cue(const NamedCue& cue, size_t file, uint32_t rate_hz,
                                    std::optional<uint64_t> length, Pregap pregap) {
  const CueSheet& sheet = cue.sheet;
  const auto place = [&](const CuePlace& at) {
    return at_rate(at.position, sheet.units_per_second, rate_hz);
  };
  std::vector<TrackSpan> spans;
  const auto end_last = [&](uint64_t end) {
    if (!spans.empty()) spans.back().end = end;
  };
  for (const CueTrack& track : sheet.tracks) {
    // What leads in to a track of the next file may stand at the end of this one.
    const bool has_pause = track.pause && track.pause->file == file;
    if (pregap == Pregap::kDrop && has_pause) end_last(place(*track.pause));
    if (track.begin.file != file) continue;
    const uint64_t begin = place(track.begin);
    if (!spans.empty() && !(pregap == Pregap::kDrop && has_pause)) end_last(begin);
    TrackSpan span{.number = track.number, .begin = begin, .end = UINT64_MAX, .track = &track};
    if (spans.empty() && begin > 0 && pregap == Pregap::kEndOfTrackBefore) {
      // The track before is in another file, or there is none.
      if (&track == &sheet.tracks.front())
        spans.push_back({.number = 0, .begin = 0, .end = begin, .track = nullptr});
      else
        span.begin = 0;
    }
    spans.push_back(span);
  }
  if (spans.empty()) throw Failure(kBadInput, cue.name, "has no track in " + sheet.files[file]);
  if (length) spans.back().end = std::min(spans.back().end, *length);
  for (const TrackSpan& span : spans) {
    if (length && span.begin >= *length)
      throw Failure(kBadInput, cue.name,
                    "has " + track_name(span) + " begin at " + duration_text(span.begin, rate_hz) +
                        ", where the sound is over: it lasts " + duration_text(*length, rate_hz));
    if (span.begin >= span.end)
      throw Failure(kBadInput, cue.name, "leaves " + track_name(span) + " without sound");
  }
  return spans;
}

std::vector<TrackSpan> spans_between(const std::vector<uint64_t>& cuts,
                                     std::optional<uint64_t> length, const std::string& path) {
  std::vector<TrackSpan> spans;
  uint64_t begin = 0;
  const auto add = [&](uint64_t end) {
    if (end <= begin)
      throw Failure(kUsage, "--at", "has to name times that go up and lie within " + path);
    const auto number = static_cast<uint32_t>(spans.size() + 1);
    spans.push_back({.number = number, .begin = begin, .end = end, .track = nullptr});
    begin = end;
  };
  for (const uint64_t cut : cuts) add(cut);
  add(length.value_or(UINT64_MAX));
  return spans;
}

}  // namespace corvin::cli
