// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The shape of a complex transform: radices, sizes and twiddle factors. Decimation in frequency
// leaves bins in digit-reversed places and decimation in time takes them from there, so no pass
// ever permutes.

#ifndef CORVIN_STUDIO_MATH_FFT_PLAN_H_
#define CORVIN_STUDIO_MATH_FFT_PLAN_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvin::studio {

struct FftStage {
  unsigned radix;            ///< 2, 3, 4, 5, 7 or 8
  std::size_t size;          ///< points of the sub-transform that this stage splits
  std::size_t sub_size;      ///< size / radix
  std::size_t twiddle_base;  ///< first of sub_size x (radix - 1) (cosine, sine) pairs
};

struct FftPlan {
  std::size_t points = 0;
  std::vector<FftStage> stages;  ///< outermost first
  std::vector<double> twiddles;  ///< e^(-2 pi i j q / size), q = 1 .. radix - 1 for each j

  /// Where the digit-reversed order keeps bin `bin`, 0 .. points - 1.
  std::size_t position(std::size_t bin) const;
};

/// Whether there is a plan: points = 2^a 3^b 5^c 7^d.
bool has_fft_plan(std::size_t points);

FftPlan make_fft_plan(std::size_t points);

/// Additions and multiplications of a transform, counted as those of its passes.
std::size_t fft_work(std::size_t points);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MATH_FFT_PLAN_H_
