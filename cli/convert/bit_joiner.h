// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// DSD behind DSD that ends within a byte: the bits move down, and nothing comes between.

#ifndef CORVIN_CLI_CONVERT_BIT_JOINER_H_
#define CORVIN_CLI_CONVERT_BIT_JOINER_H_

#include <cstdint>
#include <span>
#include <vector>

namespace corvin::cli {

class BitJoiner {
 public:
  explicit BitJoiner(uint32_t channels) : open_(channels) {}

  /** Takes bytes of each channel in turn, the oldest sample in the highest bit.
   *  @param samples  of each channel that count: those of all bytes but up to seven of the last
   *  @param out      gets the bytes that are full, appended */
  void add(std::span<const uint8_t> bytes, uint64_t samples, std::vector<uint8_t>& out);

  /** Appends the byte that is not full, if there is one. What its rest holds is left to the writer,
   *  who knows the number of samples. */
  void finish(std::vector<uint8_t>& out);

  /** Samples of each channel so far. */
  uint64_t samples() const { return samples_; }

 private:
  std::vector<uint8_t> open_;  // of each channel, what does not fill a byte, in the highest bits
  unsigned open_bits_ = 0;
  uint64_t samples_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_BIT_JOINER_H_
