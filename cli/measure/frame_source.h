// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sound of a file as frames of doubles, DSD decoded: what is measured. Read once, in order, in
// little memory.

#ifndef CORVIN_CLI_MEASURE_FRAME_SOURCE_H_
#define CORVIN_CLI_MEASURE_FRAME_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/files/dsd_input.h"
#include "cli/files/pcm_input.h"
#include "corvin.hpp"

namespace corvin::cli {

/** What is to be measured. */
struct SoundFacts {
  bool is_dsd = false;
  uint32_t rate_hz = 0;  // of the file
  uint32_t channels = 0;
  uint32_t speakers = 0;                 // mask; 0: not known
  std::optional<uint64_t> samples = {};  // or frames, that are declared
  uint32_t level_rate_hz = 0;            // of the frames for levels
  uint32_t spectrum_rate_hz = 0;         // and for spectra
};

/** Throws Failure, also for rates that cannot be measured. */
SoundFacts facts_of(const std::string& path);

/** Which frames are made of DSD. */
enum class FramesFor {
  kLevels,   // those that converting makes unless it is asked for something else
  kSpectra,  // of the full band of a high rate
};

/** Where reading begins, in samples of DSD or frames of PCM, and how many there are at most. */
struct Stretch {
  uint64_t begin = 0;
  uint64_t count = UINT64_MAX;
};

/** The bits of a stretch of a DSD file, which may begin within a byte. */
class DsdBits {
 public:
  DsdBits(const std::string& path, const Stretch& stretch);

  DsdInput& input() { return input_; }
  uint32_t channels() const { return input_.info().channels; }

  /** Samples of each channel in all. */
  uint64_t samples() const { return samples_; }

  /** Reads up to `bytes` bytes of each channel, earliest sample in the most significant bit, to
   *  `to[channel]`, made as long; returns their number, 0 at the end. What follows the last sample in
   *  its byte is not told. Throws Failure. */
  size_t read(std::vector<std::vector<uint8_t>>& to, size_t bytes);

 private:
  DsdInput input_;
  const uint64_t begin_;
  const uint64_t samples_;
  uint64_t left_ = samples_;
  std::vector<uint8_t> carried_;  // the last byte of each channel, of which the rest is to come
};

class FrameSource {
 public:
  virtual ~FrameSource() = default;
  FrameSource() = default;
  FrameSource(const FrameSource&) = delete;
  FrameSource& operator=(const FrameSource&) = delete;

  /** Fills room for `count` interleaved frames, full scale +-1; fewer come at the end alone. Throws
   *  Failure. */
  virtual size_t read(double* frames, size_t count) = 0;

  /** Says what is damaged in the file; to be called at the end. */
  virtual void note_damage() = 0;
};

/** The frames of a stretch of the file. Throws Failure. */
std::unique_ptr<FrameSource> open_frames(const std::string& path, const SoundFacts& facts,
                                         FramesFor use, const Stretch& stretch = {});

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_FRAME_SOURCE_H_
