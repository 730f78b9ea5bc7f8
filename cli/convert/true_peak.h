// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The true peak of PCM, which a converter makes of it between the samples too.

#ifndef CORVIN_CLI_CONVERT_TRUE_PEAK_H_
#define CORVIN_CLI_CONVERT_TRUE_PEAK_H_

#include <ebur128.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace corvin::cli {

class TruePeak {
 public:
  /** Throws std::bad_alloc. */
  TruePeak(uint32_t rate_hz, uint32_t channels);

  /** Takes interleaved frames. */
  void add(const double* frames, size_t count);

  /** The largest of all channels by four-fold up-sampling (two-fold from 96 kHz, none from 192 kHz
   *  on), ITU-R BS.1770-4, annex 2; 1.0 is full scale. */
  double largest() const;

 private:
  struct Closer {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
  };
  std::unique_ptr<ebur128_state, Closer> state_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_TRUE_PEAK_H_
