// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Cuts the bits of one encoder run into files, track by track, so that these, joined, are the run.
// A track that begins within one of the run's bytes has its bits shifted to bytes of its own. Where
// a file states its number of samples, the rest of its last byte and of its last block is the run's
// next bits: a reader that joins tracks before it looks at their length hears no gap.
//
// Nothing of the run is kept but a byte of each channel: tracks that wait for the rest of their last
// block and the one that is being made take their parts of the same bytes.

#ifndef CORVIN_STUDIO_CONVERT_TRACK_CUTS_H_
#define CORVIN_STUDIO_CONVERT_TRACK_CUTS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <vector>

#include "formats/sound_writer.h"
#include "studio/convert/channel_bytes.h"

namespace corvin::studio {

class TrackCuts {
 public:
  /// Completes a track's file and returns a corvin_status.
  /// @param goes_on  whether what stands behind the samples is the run's; else it is to be silence
  using Finish = std::function<int(std::size_t track, std::uint64_t samples, bool goes_on)>;

  /// @param targets  one for each track, at least one; of the same rate and channels
  TrackCuts(std::span<formats::SoundWriter* const> targets, Finish finish);

  /// Ends the track that is being made before this sample of the run, at which the next one begins;
  /// no sample from there on was taken yet. Where one of the files knows whole bytes only, the cut
  /// lies at the run's next whole byte. To be called once for each track.
  void cut(std::uint64_t sample);

  // These return CORVIN_OK, CORVIN_E_WRITE, or what `finish` did. Tracks are finished in order.

  /// Takes the run's next bytes, earliest sample in the most significant bit.
  int take(const std::uint8_t* const* channels, std::size_t bytes);

  /// The run is over.
  int end();

 private:
  struct Track {
    std::uint64_t first = 0;  // sample of the run
    std::uint64_t end = std::numeric_limits<std::uint64_t>::max();
    unsigned shift() const { return static_cast<unsigned>(first % 8); }
  };

  bool is_last(std::size_t track) const { return track + 1 == tracks_.size(); }
  std::uint64_t wanted_bytes(std::size_t track) const;
  bool feed(std::size_t track, const std::uint8_t* const* channels, std::size_t bytes);
  bool write_shifted(std::size_t track, const std::uint8_t* const* channels, std::uint64_t from,
                     std::size_t bytes);
  int finish_oldest();

  std::span<formats::SoundWriter* const> targets_;
  Finish finish_;
  std::uint64_t grid_ = 1;  // samples between the places where cuts may lie
  std::vector<Track> tracks_;
  std::size_t oldest_ = 0;            // track that is not finished
  std::size_t making_ = 0;            // track whose end is not known
  std::uint64_t position_ = 0;        // byte of the run that comes next
  std::vector<std::uint8_t> before_;  // the byte before it, of each channel
  ChannelBytes shifted_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_TRACK_CUTS_H_
