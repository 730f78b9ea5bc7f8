// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The decoder's last step alone, for a host's own frames: nothing is kept back, so there is neither
// push nor pull.

#ifndef CORVIN_STUDIO_DECODE_QUANTIZER_H_
#define CORVIN_STUDIO_DECODE_QUANTIZER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "corvin.h"
#include "studio/kernels/quantise.h"
#include "studio/math/aligned_array.h"
#include "studio/pcm/sample_output.h"

namespace corvin::studio {

class Quantizer {
 public:
  /// Checks the settings and builds. Returns a corvin_status; throws std::bad_alloc.
  static int create(const corvin_quantizer_settings& settings,
                    std::unique_ptr<Quantizer>& quantizer);

  // As the C functions of the same names; arguments are valid.
  void run(const double* in, std::size_t frames, void* out);
  void run_planar(const double* const* in, std::size_t frames, void* const* out);
  void reset();
  void report(corvin_quantizer_report& report) const;

 private:
  explicit Quantizer(const corvin_quantizer_settings& settings);

  template <typename Channel, typename Write>
  void in_chunks(std::size_t frames, std::size_t stride, Channel channel, bool writes, Write write);

  corvin_quantizer_settings settings_;
  SampleOutput output_;
  AlignedArray<double> samples_;           // [channel][chunk]
  std::vector<const double*> rows_;        // of these
  std::vector<std::uint8_t> interleaved_;  // a chunk that goes to places of each channel
  std::uint64_t place_;                    // of the next frame
  std::uint64_t written_ = 0;
  QuantiseTally tally_;
};

/// The defaults of corvin_quantizer_settings_defaults().
corvin_quantizer_settings default_quantizer_settings();

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_DECODE_QUANTIZER_H_
