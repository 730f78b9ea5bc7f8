// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A PCM file read as the very samples that it holds, for those who write them into another one.

#ifndef CORVIN_CLI_FILES_PACKED_INPUT_H_
#define CORVIN_CLI_FILES_PACKED_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"

namespace corvin::cli {

class PackedInput {
 public:
  /** Opens the file at `path`. Throws Failure, also when its samples are neither integers nor floating
   *  point, such as those of kinds that compress with loss. */
  explicit PackedInput(const std::string& path);

  const PcmInput& pcm() const { return pcm_; }

  /** The narrowest that holds the samples. */
  corvin_sample_format format() const { return format_; }

  /** Bits of it that count, from the top; 0: all. */
  uint32_t significant_bits() const { return significant_bits_; }

  /** "24 bits", "32-bit float". */
  std::string format_name() const;

  /** Replaces `bytes` by up to `frames` packed frames and returns their number; 0 at the end. */
  size_t read(size_t frames, std::vector<uint8_t>& bytes);

 private:
  PcmInput pcm_;
  corvin_sample_format format_ = CORVIN_S24;
  uint32_t significant_bits_ = 0;
  std::vector<int> integers_;
  std::vector<double> floats_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PACKED_INPUT_H_
