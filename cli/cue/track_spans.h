// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Where the tracks of one file begin and end, one behind the other, by a cue sheet or by times.

#ifndef CORVIN_CLI_CUE_TRACK_SPANS_H_
#define CORVIN_CLI_CUE_TRACK_SPANS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/cue/cue_sources.h"

namespace corvin::cli {

/** What becomes of the sound between INDEX 00 and INDEX 01 of a track. */
enum class Pregap { kEndOfTrackBefore, kDrop };

struct TrackSpan {
  uint32_t number = 0;              // 0: what stands before the first track
  uint64_t begin = 0;               // samples, or frames of PCM
  uint64_t end = 0;                 // behind the last
  const CueTrack* track = nullptr;  // of the sheet, if it is one of that
};

/** The spans of the sheet's file `file`, at least one. Throws Failure for places that are not in the
 *  sound.
 *  @param length  samples or frames of the sound; no value: not known
 *  The result points into `cue`. */
std::vector<TrackSpan> spans_of_cue(const NamedCue& cue, size_t file, uint32_t rate_hz,
                                    std::optional<uint64_t> length, Pregap pregap);

/** The spans between `cuts`, which go up. Throws Failure as above, `path` being the sound's. */
std::vector<TrackSpan> spans_between(const std::vector<uint64_t>& cuts,
                                     std::optional<uint64_t> length, const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CUE_TRACK_SPANS_H_
