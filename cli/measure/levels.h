// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Levels of the samples themselves: of each channel over all, and of the sound along its time.

#ifndef CORVIN_CLI_MEASURE_LEVELS_H_
#define CORVIN_CLI_MEASURE_LEVELS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvin::cli {

struct ChannelLevel {
  double peak = 0;   // largest absolute sample, 1.0 is full scale
  double power = 0;  // in relation to that of a sine of full scale
  double dc = 0;     // average, of full scale
};

/** A stretch of the sound. */
struct LevelBlock {
  double peak = 0;   // of all channels
  double power = 0;  // of the loudest one, as above
};

class SampleMeter {
 public:
  SampleMeter(uint32_t rate_hz, uint32_t channels);

  /** Takes interleaved frames. */
  void add(const double* frames, size_t count);

  /** Completes the last block; nothing can be added afterwards. */
  void finish();

  uint64_t frames() const { return frames_; }
  ChannelLevel channel(uint32_t channel) const;

  /** Up to 1024 blocks in order, each but the last of block_frames() frames. They become longer with
   *  the sound, so that their number does not. */
  const std::vector<LevelBlock>& blocks() const { return blocks_; }
  uint64_t block_frames() const { return block_frames_; }

 private:
  void end_block();
  void join_blocks();

  struct Sums {
    double peak = 0, squares = 0, sum = 0;
    double block_squares = 0;
  };
  std::vector<Sums> channels_;
  std::vector<LevelBlock> blocks_;
  uint64_t block_frames_;
  uint64_t in_block_ = 0;
  double block_peak_ = 0;
  uint64_t frames_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_LEVELS_H_
