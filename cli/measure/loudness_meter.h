// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Loudness by EBU R128 (ITU-R BS.1770-4, EBU Tech 3341 and 3342), and the true peaks of the channels.

#ifndef CORVIN_CLI_MEASURE_LOUDNESS_METER_H_
#define CORVIN_CLI_MEASURE_LOUDNESS_METER_H_

#include <ebur128.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace corvin::cli {

/** No value: the sound is shorter than the time that it is told of, or nothing passes the gates. */
struct LoudnessFigures {
  std::optional<double> integrated_lufs = {};
  std::optional<double> range_lu = {};
  std::optional<double> most_momentary_lufs = {};   // of any 0.4 s
  std::optional<double> most_short_term_lufs = {};  // of any 3 s
};

class LoudnessMeter {
 public:
  /** @param speakers  mask of the channels' speakers; 0: the usual ones. Throws std::bad_alloc */
  LoudnessMeter(uint32_t rate_hz, uint32_t channels, uint32_t speakers);

  /** Takes interleaved frames, full scale +-1. */
  void add(const double* frames, size_t count);

  LoudnessFigures figures() const;

  /** Of a channel; 1.0 is full scale. By four-fold up-sampling, two-fold from 96 kHz and none from
   *  192 kHz on. */
  double true_peak(uint32_t channel) const;

 private:
  struct Closer {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
  };
  void look();

  std::unique_ptr<ebur128_state, Closer> state_;
  const size_t step_;  // frames between two looks, a tenth of a second
  size_t until_look_ = step_;
  uint64_t looks_ = 0;
  double most_momentary_, most_short_term_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_LOUDNESS_METER_H_
