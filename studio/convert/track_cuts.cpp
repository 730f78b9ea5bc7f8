// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/track_cuts.h"

#include <algorithm>
#include <utility>

#include "corvin.h"
#include "formats/bytes/bit_order.h"
#include "formats/container.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kShiftedBytes = 1 << 12;  // of each channel at a time

}  // namespace

TrackCuts::TrackCuts(std::span<formats::SoundWriter* const> targets, Finish finish)
    : targets_(targets),
      finish_(std::move(finish)),
      tracks_(targets.size()),
      before_(targets[0]->format().channels),
      shifted_(targets[0]->format().channels, kShiftedBytes) {
  for (const formats::SoundWriter* target : targets) {
    if (!formats::StatesSamples(target->format().kind)) grid_ = 8;
  }
}

void TrackCuts::cut(std::uint64_t sample) {
  const std::size_t track = making_++;
  if (!is_last(track)) {
    tracks_[track].end = (sample + grid_ - 1) / grid_ * grid_;
    tracks_[making_].first = tracks_[track].end;
  } else {
    // A run of a few samples may end before the whole byte where its last cut lies.
    tracks_[track].end = std::max(sample, tracks_[track].first);
  }
}

// Padding included, as far as the run fills it.
std::uint64_t TrackCuts::wanted_bytes(std::size_t track) const {
  const Track& at = tracks_[track];
  if (track >= making_) return std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t bytes = formats::BytesOf(at.end - at.first);
  return is_last(track) ? bytes : targets_[track]->WholeBlocks(bytes);
}

// Gives a track its part of the run's next bytes. False when its file did not take them.
bool TrackCuts::feed(std::size_t track, const std::uint8_t* const* channels, std::size_t bytes) {
  formats::SoundWriter& target = *targets_[track];
  const unsigned shift = tracks_[track].shift();
  const std::uint64_t from = tracks_[track].first / 8 + target.channel_bytes();
  // A shifted byte ends in the run's byte behind the one where it begins.
  const std::uint64_t until = position_ + bytes - (shift != 0 ? 1 : 0);
  if (from >= until) return true;
  const auto count = static_cast<std::size_t>(
      std::min(until - from, wanted_bytes(track) - target.channel_bytes()));
  if (count == 0) return true;
  if (shift != 0) return write_shifted(track, channels, from, count);
  std::vector<const std::uint8_t*> places(channels, channels + before_.size());
  for (const std::uint8_t*& place : places) place += from - position_;
  return target.Write(places.data(), 1, count, false);
}

bool TrackCuts::write_shifted(std::size_t track, const std::uint8_t* const* channels,
                              std::uint64_t from, std::size_t bytes) {
  const unsigned shift = tracks_[track].shift();
  while (bytes > 0) {
    const std::size_t count = std::min(bytes, kShiftedBytes);
    for (std::size_t c = 0; c < before_.size(); ++c) {
      unsigned first = from < position_ ? before_[c] : channels[c][from - position_];
      const std::uint8_t* in = channels[c] + (from + 1 - position_);
      std::uint8_t* out = shifted_.places()[c];
      for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>(first << shift | in[i] >> (8 - shift));
        first = in[i];
      }
    }
    if (!targets_[track]->Write(shifted_.places(), 1, count, false)) return false;
    from += count;
    bytes -= count;
  }
  return true;
}

int TrackCuts::take(const std::uint8_t* const* channels, std::size_t bytes) {
  const std::size_t begun = std::min(making_ + 1, tracks_.size());
  for (std::size_t track = oldest_; track < begun; ++track) {
    if (!feed(track, channels, bytes)) return CORVIN_E_WRITE;
  }
  for (std::size_t c = 0; c < before_.size(); ++c) before_[c] = channels[c][bytes - 1];
  position_ += bytes;
  while (oldest_ < making_ && targets_[oldest_]->channel_bytes() == wanted_bytes(oldest_)) {
    if (const int status = finish_oldest(); status != CORVIN_OK) return status;
  }
  return CORVIN_OK;
}

int TrackCuts::end() {
  // What begins in the run's last byte ends in this one.
  const std::vector<std::uint8_t> silence(before_.size(), formats::kSilence);
  std::vector<const std::uint8_t*> places;
  for (const std::uint8_t& byte : silence) places.push_back(&byte);
  while (oldest_ < tracks_.size()) {
    if (tracks_[oldest_].shift() != 0 && !feed(oldest_, places.data(), 1)) return CORVIN_E_WRITE;
    if (const int status = finish_oldest(); status != CORVIN_OK) return status;
  }
  return CORVIN_OK;
}

int TrackCuts::finish_oldest() {
  const std::size_t track = oldest_++;
  return finish_(track, tracks_[track].end - tracks_[track].first, !is_last(track));
}

}  // namespace corvin::studio
