// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is between the engine's PCM and a file's: nothing as a rule; for a rate that the engine has
// no plan for a resampler, behind which the samples get their format.

#ifndef CORVIN_CLI_CONVERT_PCM_CHAIN_H_
#define CORVIN_CLI_CONVERT_PCM_CHAIN_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "cli/convert/resampler.h"
#include "corvin.hpp"

namespace corvin::cli {

/** What came out. */
struct PcmLevel {
  uint64_t frames = 0;
  uint64_t clips = 0;  // samples
  double peak = 0;     // 1.0 is full scale
};

class PcmChain {
 public:
  struct Config {
    uint32_t engine_rate_hz = 44100;
    uint32_t rate_hz = 44100;
    uint32_t channels = 2;
    ConvertSettings settings;  // of the conversion, with the file's format
  };

  explicit PcmChain(const Config& config);

  /** What the engine has to hand in. */
  corvin_sample_format engine_format() const;

  /** Takes the engine's interleaved frames and returns the bytes of the file's, until the next
   *  call. */
  std::span<const uint8_t> run(const void* frames, size_t count);

  /** Returns the bytes of what is left. */
  std::span<const uint8_t> finish();

  /** Frames in the file for as many of the engine's. */
  uint64_t frames_for(uint64_t engine_frames) const;

  PcmLevel level(const corvin_convert_report& engine) const;

 private:
  std::span<const uint8_t> quantize(std::span<const double> frames);

  Config config_;
  std::optional<Resampler> resampler_;
  std::optional<Quantizer> quantizer_;
  size_t engine_frame_bytes_;
  std::vector<uint8_t> out_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_PCM_CHAIN_H_
