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
  struct Config {
    uint64_t begin = 0;                      // the first frame of the file to be read
    uint64_t end = UINT64_MAX;               // and the first one behind them
    std::vector<uint32_t> channel_map = {};  // channels of the file to be read; empty: all
    corvin_phase phase = CORVIN_LINEAR_PHASE;
  };

  /** @param input  with nothing read of it; outlives this. Throws Failure */
  PcmFeed(PcmInput& input, const Config& config);

  uint32_t channels() const { return channels_; }

  /** Of what comes. */
  uint32_t rate_hz() const { return engine_rate_hz_; }

  /** Frames that will come, if the file holds what it declares. */
  std::optional<uint64_t> declared_frames() const;

  /** Fills room for whole frames; fewer come at the end alone. Returns their number. */
  size_t read(double* frames, size_t count);

  /** Frames of the file that have been read. */
  uint64_t frames_read() const { return frames_read_; }

 private:
  void skip(uint64_t frames);
  size_t read_file(double* frames, size_t count);
  size_t read_resampled(double* frames, size_t count);

  PcmInput& input_;
  const Config config_;
  const uint64_t most_frames_;
  const uint32_t channels_;
  const uint32_t engine_rate_hz_;
  std::optional<Resampler> resampler_;
  std::vector<double> all_channels_;  // when not all are wanted as they are
  std::vector<double> in_;            // to be resampled
  std::span<const double> ready_;     // resampled and not taken
  bool is_at_end_ = false;
  uint64_t frames_read_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_PCM_FEED_H_
