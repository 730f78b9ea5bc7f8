// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Peak and mean level of the PCM that a command converts, over all channels together.

#ifndef CORVIN_CLI_CLASSIC_LEVEL_METER_H_
#define CORVIN_CLI_CLASSIC_LEVEL_METER_H_

#include <cstdint>
#include <span>
#include <string>

namespace corvin::cli {

class LevelMeter {
 public:
  /** @param bits        8, 16, 24 or 32 bits per sample
   *  @param big_endian  most significant byte of each sample first */
  explicit LevelMeter(int bits, bool big_endian = false)
      : bytes_per_sample_(bits / 8), big_endian_(big_endian) {}

  /** Takes whole signed samples. */
  void add(std::span<const uint8_t> pcm);

  /** "peak -6.02 dBFS, RMS -9.03 dBFS", where a square wave of full scale has 0 dB of both. */
  std::string text() const;

 private:
  int bytes_per_sample_;
  bool big_endian_;
  double peak_ = 0;  // full scale is 1
  double sum_of_squares_ = 0;
  uint64_t samples_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_LEVEL_METER_H_
