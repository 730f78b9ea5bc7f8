// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from PCM to DSD files.

#include <deque>
#include <string>

#include "cli/convert/engine_run.h"
#include "cli/convert/pcm_feed.h"
#include "cli/convert/true_peak.h"
#include "cli/convert/ways.h"
#include "cli/files/dsd_output.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

uint32_t speakers_of(const PcmInput& input, const PcmFeed::Config& feed) {
  if (feed.channel_map.empty()) return input.speakers();
  return corvin_speakers_mapped(input.speakers(), feed.channel_map.data(), feed.channel_map.size());
}

// One file that becomes one file.
struct Track {
  const DsdRequest& request;
  PcmInput& input;
  PcmFeed feed;
  DsdOutput output;

  Track(const DsdRequest& request, PcmInput& input)
      : request(request),
        input(input),
        feed(input, request.feed),
        output({.file = request.output,
                .container = request.container,
                .dsd_rate_hz = request.dsd_rate_hz,
                .channels = feed.channels(),
                .speakers = speakers_of(input, request.feed),
                .verify = request.care.verify}) {
    output.set_tags(read_pcm_tags(input));
  }

  void require_sound() const {
    if (feed.frames_read() == 0 && input.declared_frames())
      throw no_convertible_sound(input.path());
    const std::string damage = input.damage();
    if (request.care.strict && !damage.empty())
      throw Failure(kBadInput, input.path(),
                    damage + "; without --strict what is there is converted");
  }
};

corvin_convert_report convert_tracks(std::deque<Track>& tracks, const ConvertSettings& settings) {
  std::vector<PcmSource> sources;
  std::vector<Writer> writers;
  const Track* writing = &tracks.front();
  for (Track& track : tracks) {
    sources.push_back({.pcm_rate = track.feed.rate_hz(),
                       .channels = track.feed.channels(),
                       .format = CORVIN_F64,
                       .frames = track.feed.declared_frames().value_or(0),
                       .read = [&track](void* frames, size_t count) {
                         return static_cast<int64_t>(
                             track.feed.read(static_cast<double*>(frames), count));
                       }});
    writers.push_back(std::move(track.output.writer()));
  }
  const auto convert = [&](const ConvertSettings& all, const Progress& progress) {
    return convert_to_dsd_tracks(sources, writers, all, progress);
  };
  const auto why_writing = [&] {
    for (const Track& track : tracks)
      if (track.output.has_failed()) writing = &track;
    return writing->output.write_failure();
  };
  return run_engine(settings, convert,
                    {.input_path = tracks.front().input.path(),
                     .input_rate_hz = tracks.front().feed.rate_hz(),
                     .why_writing = why_writing});
}

}  // namespace

std::vector<Converted> convert_pcm_to_dsd(const std::vector<DsdRequest>& requests,
                                          std::vector<PcmInput>& inputs) {
  std::deque<Track> tracks;
  for (size_t i = 0; i < inputs.size(); ++i) tracks.emplace_back(requests[i], inputs[i]);
  const corvin_convert_report result = convert_tracks(tracks, requests.front().settings);
  for (const Track& track : tracks) track.require_sound();
  note_limited(tracks.front().input.path(), result.limited);
  std::vector<Converted> converted;
  for (Track& track : tracks) {
    track.output.commit();
    const uint64_t frames = track.feed.frames_read();
    track.output.print_summary(duration_text(frames, track.input.rate_hz()),
                               tracks.size() == 1 ? level_text(result.peak) : "");
    if (frames == 0) note_no_sound(track.input.path());
    if (const std::string damage = track.input.damage(); !damage.empty())
      note_damage(track.input.path(), damage);
    converted.push_back(
        {.seconds = static_cast<double>(frames) / track.input.rate_hz(), .peak = result.peak});
  }
  return converted;
}

double true_peak_of(PcmInput& input, const PcmFeed::Config& config) {
  constexpr size_t kFramesAtOnce = 1 << 13;
  PcmFeed feed(input, config);
  TruePeak peak(feed.rate_hz(), feed.channels());
  std::vector<double> frames(kFramesAtOnce * feed.channels());
  while (const size_t got = feed.read(frames.data(), kFramesAtOnce)) peak.add(frames.data(), got);
  return peak.largest();
}

}  // namespace corvin::cli
