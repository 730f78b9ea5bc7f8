// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A PCM file as the engine takes it: samples of 64 bits at one of its rates.

#ifndef CORVIN_CLI_CONVERT_PCM_FEED_H_
#define CORVIN_CLI_CONVERT_PCM_FEED_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "cli/convert/resampler.h"
#include "cli/files/pcm_input.h"

namespace corvin::cli {

class PcmFeed {
 public:
  /** @param input  to be read from where it stands; outlives this
   *  @param end    the frame of the file that is the first one not to be read */
  PcmFeed(PcmInput& input, uint64_t begin, uint64_t end, corvin_phase phase);

  /** Of what comes. */
  uint32_t rate_hz() const { return engine_rate_hz_; }

  /** Frames that will come, if the file holds what it declares. */
  std::optional<uint64_t> declared_frames() const;

  /** Fills room for whole frames; fewer come at the end alone. Returns their number. */
  size_t read(double* frames, size_t count);

  /** Frames of the file that have been read. */
  uint64_t frames_read() const { return frames_read_; }

 private:
  size_t read_file(double* frames, size_t count);
  size_t read_resampled(double* frames, size_t count);

  PcmInput& input_;
  const uint64_t most_frames_;
  const uint32_t engine_rate_hz_;
  std::optional<Resampler> resampler_;
  std::vector<double> in_;
  std::span<const double> ready_;  // resampled and not taken
  bool is_at_end_ = false;
  uint64_t frames_read_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_PCM_FEED_H_
