// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A sound file's samples as the PCM that the classic engine reads: signed integers, most
// significant byte first.

#ifndef CORVIN_CLI_CLASSIC_INTEGER_PCM_H_
#define CORVIN_CLI_CLASSIC_INTEGER_PCM_H_

#include <cstdint>
#include <span>
#include <vector>

#include "cli/files/pcm_input.h"

namespace corvin::cli {

class IntegerPcm {
 public:
  /** Reads on from where `input` is, which outlives it. */
  explicit IntegerPcm(PcmInput& input);

  /** 8, 16, 24 or 32: as many as the file's own samples need. 24 for floating point and lossy
   *  coding, which state no number. */
  int bits() const { return bits_; }

  size_t bytes_per_frame() const { return input_.channels() * static_cast<size_t>(bits_ / 8); }

  /** Fills `pcm` with as many whole frames as fit and returns the bytes; 0 at the end. */
  size_t read(std::span<uint8_t> pcm);

  /** Reads to the end and returns how many frames there were from here on. */
  uint64_t count_frames();

  /** Samples read that lay beyond full scale and were set to it. */
  uint64_t clipped() const { return clipped_; }

 private:
  int32_t quantised(double sample);

  PcmInput& input_;
  int bits_;
  bool is_integer_;
  uint64_t clipped_ = 0;
  std::vector<int> integers_;
  std::vector<double> reals_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_INTEGER_PCM_H_
