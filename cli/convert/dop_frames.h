// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// DSD in frames of 24-bit PCM ("DSD over PCM", 1.1): sixteen samples of a channel, the oldest in the
// highest bit, under a marker that alternates from frame to frame and is the same in all channels.
// Here is only what is in the frames; files are dop.h's.

#ifndef CORVIN_CLI_CONVERT_DOP_FRAMES_H_
#define CORVIN_CLI_CONVERT_DOP_FRAMES_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace corvin::cli {

inline constexpr uint8_t kDopMarkers[] = {0x05, 0xfa};
inline constexpr uint32_t kDopSamples = 16;  // of DSD in a frame
inline constexpr uint8_t kDsdSilence = 0x69;

/** Makes frames of DSD. */
class DopPacker {
 public:
  explicit DopPacker(uint32_t channels) : channels_(channels) {}

  /** Appends the frames of DSD bytes, one of each channel in turn, an even number of each, to
   *  `frames`: samples of three bytes, the least significant first. */
  void pack(std::span<const uint8_t> dsd, std::vector<uint8_t>& frames);

 private:
  const uint32_t channels_;
  size_t next_marker_ = 0;
};

/** Makes DSD of frames, wherever in them the markers begin, break off, begin again and end. Frames in
 *  between become silence, so that what follows stays in its place. */
class DopUnpacker {
 public:
  explicit DopUnpacker(uint32_t channels) : channels_(channels) {}

  /** Takes frames of 24 bits in the top of each int, and appends the DSD bytes, one of each channel
   *  in turn, to `dsd`. */
  void unpack(std::span<const int> frames, std::vector<uint8_t>& dsd);

  /** Appends what is left. */
  void finish(std::vector<uint8_t>& dsd);

  /** What was found, to be asked after finish(). */
  struct Report {
    bool is_dop = false;       // else nothing came out
    uint64_t leading = 0;      // frames before the first marker, left out
    uint64_t trailing = 0;     // behind the last, left out
    bool has_sound = false;    // in leading or trailing frames: not all of them are 0
    uint64_t silenced = 0;     // frames in between that became silence
    uint64_t breaks = 0;       // places where frames are missing or became silence
    uint64_t first_break = 0;  // the frame of the first one
    uint64_t frames = 0;       // in all
  };
  const Report& report() const { return report_; }

 private:
  std::optional<uint8_t> marker_of(std::span<const int> frame) const;
  void search(std::optional<uint8_t> marker, std::span<const int> frame, std::vector<uint8_t>& dsd);
  void append(std::span<const int> frame, std::vector<uint8_t>& dsd) const;
  void accept(std::vector<uint8_t>& dsd);

  const uint32_t channels_;
  Report report_;
  bool is_in_step_ = false;
  uint8_t last_marker_ = 0;
  uint64_t gap_ = 0;            // frames without use since the markers were lost
  bool is_gap_silent_ = true;   // all of them are 0
  uint64_t lost_at_ = 0;        // the frame at which they were
  std::vector<uint8_t> found_;  // DSD of frames that seem to be in step again
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_DOP_FRAMES_H_
