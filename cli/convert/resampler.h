// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// PCM to another rate, for the rates that the engine has no plan for. The band of the lower rate
// stays within 0.01 dB up to 91 % of its half; what is beyond half is gone.

#ifndef CORVIN_CLI_CONVERT_RESAMPLER_H_
#define CORVIN_CLI_CONVERT_RESAMPLER_H_

#include <soxr.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "corvin.h"

namespace corvin::cli {

class Resampler {
 public:
  /** Throws std::bad_alloc. */
  Resampler(uint32_t from_hz, uint32_t to_hz, uint32_t channels, corvin_phase phase);

  /** Takes interleaved frames and returns those that they complete, until the next call. The first
   *  frame that comes out stands at the time of the first that went in. */
  std::span<const double> run(std::span<const double> frames);

  /** Returns what is left: then as many frames have come out in all as frames_for() says. */
  std::span<const double> finish();

  /** Frames at the new rate for `frames` at the old one, rounded up. */
  uint64_t frames_for(uint64_t frames) const;

 private:
  std::span<const double> resample(const double* frames, size_t count);

  struct Closer {
    void operator()(soxr* handle) const { soxr_delete(handle); }
  };
  const uint32_t from_hz_, to_hz_, channels_;
  std::unique_ptr<soxr, Closer> handle_;
  std::vector<double> out_;
  uint64_t frames_in_ = 0, frames_out_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_RESAMPLER_H_
