// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/dop_frames.h"

#include <algorithm>
#include <cstddef>

namespace corvin::cli {
namespace {

// Frames whose markers alternate before they are believed. Of other sound eight in a row come up
// once in 10^18 frames if its highest bytes are chance, and at a tone of half the rate alone if not.
constexpr size_t kSureFrames = 8;

// Up to so many frames before the end of a file need not be followed by so many sure ones.
constexpr uint64_t kShortGap = 32;

}  // namespace

void DopPacker::pack(std::span<const uint8_t> dsd, std::vector<uint8_t>& frames) {
  const size_t channels = channels_;
  for (size_t at = 0; at + 2 * channels <= dsd.size(); at += 2 * channels) {
    const uint8_t marker = kDopMarkers[next_marker_];
    next_marker_ ^= 1;
    for (size_t channel = 0; channel < channels; ++channel) {
      frames.push_back(dsd[at + channels + channel]);
      frames.push_back(dsd[at + channel]);
      frames.push_back(marker);
    }
  }
}

void DopUnpacker::unpack(std::span<const int> frames, std::vector<uint8_t>& dsd) {
  for (; frames.size() >= channels_; frames = frames.subspan(channels_)) {
    const auto frame = frames.first(channels_);
    const auto marker = marker_of(frame);
    if (is_in_step_ && marker && *marker != last_marker_) {
      last_marker_ = *marker;
      append(frame, dsd);
    } else {
      if (is_in_step_) lost_at_ = report_.frames;
      is_in_step_ = false;
      search(marker, frame, dsd);
    }
    ++report_.frames;
  }
}

void DopUnpacker::finish(std::vector<uint8_t>& dsd) {
  if (is_in_step_ || report_.frames == 0) return;
  // At the end there is nothing more to be sure by.
  if (!found_.empty() && gap_ <= (report_.is_dop ? kShortGap : 0)) {
    accept(dsd);
    return;
  }
  if (!report_.is_dop) return;
  report_.trailing = report_.frames - lost_at_;
  if (!is_gap_silent_ || !found_.empty()) report_.has_sound = true;
}

// ---- Details --------------------------------------------------------------------------------

std::optional<uint8_t> DopUnpacker::marker_of(std::span<const int> frame) const {
  const auto top = static_cast<uint8_t>(static_cast<uint32_t>(frame[0]) >> 24);
  if (std::find(std::begin(kDopMarkers), std::end(kDopMarkers), top) == std::end(kDopMarkers))
    return {};
  // Wider samples have nothing below the 24 bits.
  const bool is_same = std::all_of(frame.begin(), frame.end(), [&](int sample) {
    return static_cast<uint32_t>(sample) >> 24 == top && (sample & 0xff) == 0;
  });
  return is_same ? std::optional(top) : std::nullopt;
}

void DopUnpacker::search(std::optional<uint8_t> marker, std::span<const int> frame,
                         std::vector<uint8_t>& dsd) {
  const size_t frame_bytes = size_t{2} * channels_;
  const bool goes_on = marker && !found_.empty() && *marker != last_marker_;
  if (!goes_on) {
    gap_ += found_.size() / frame_bytes;
    if (!found_.empty()) is_gap_silent_ = false;
    found_.clear();
  }
  if (marker) {
    last_marker_ = *marker;
    append(frame, found_);
  } else {
    ++gap_;
    if (std::any_of(frame.begin(), frame.end(), [](int sample) { return sample != 0; }))
      is_gap_silent_ = false;
  }
  if (found_.size() == kSureFrames * frame_bytes) accept(dsd);
}

void DopUnpacker::append(std::span<const int> frame, std::vector<uint8_t>& dsd) const {
  for (const int shift : {16, 8})
    for (const int sample : frame)
      dsd.push_back(static_cast<uint8_t>(static_cast<uint32_t>(sample) >> shift));
}

void DopUnpacker::accept(std::vector<uint8_t>& dsd) {
  if (!report_.is_dop) {
    report_.leading = gap_;
    report_.has_sound = !is_gap_silent_;
  } else {
    if (report_.breaks++ == 0) report_.first_break = lost_at_;
    report_.silenced += gap_;
    dsd.insert(dsd.end(), gap_ * 2 * channels_, kDsdSilence);
  }
  dsd.insert(dsd.end(), found_.begin(), found_.end());
  found_.clear();
  gap_ = 0;
  is_gap_silent_ = true;
  report_.is_dop = is_in_step_ = true;
}

}  // namespace corvin::cli
