// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The loops' coefficients. A loop is a chain of resonators fed with w = u - v, u the input and
// v = +-1 the bit:
//
//   in_1 = w;  a_k += in_k - g_k b_k;  in_(k+1) = b_k;  b_k += a_k (the new one);
//   y = u + c_1 a_1 + c_2 b_1 + c_3 a_2 + ... of the states before the step;  v = y < 0 ? -1 : 1.
//
// The signal passes with gain 1, and the quantiser's error through prod(d^2 + g_k d + g_k) / D with
// d = z - 1. At DSD64 and DSD128 the zeros g_k and the denominator D were optimised together by
// simulation: least noise from 20 Hz to 200 kHz at a given largest signal, with a smooth rise above
// the audible band. From DSD256 on the zeros minimise the noise up to 50 kHz (roots of a Legendre
// polynomial).

#ifndef CORVIN_STUDIO_MODULATOR_NOISE_SHAPERS_H_
#define CORVIN_STUDIO_MODULATOR_NOISE_SHAPERS_H_

#include "studio/modulator/modulator.h"

namespace corvin::studio {

inline constexpr int kMaxOrder = 10;

struct ShaperDesign {
  int order = 0;                 ///< even; what follows is zero beyond it
  double c[kMaxOrder] = {};      ///< weights of the states a_1, b_1, a_2, b_2, ...
  double g[kMaxOrder / 2] = {};  ///< feedback of the resonators
  double knee = 0.0;             ///< the limiter leaves |u| <= knee alone
  double ceiling = 0.0;          ///< and lets nothing past
  double bound[kMaxOrder] = {};  ///< |c_i x_i| beyond it means a loop that lost lock
};

/// The loop of a grade. At DSD256 and DSD512 every grade has the standard loop: its noise is below
/// what any source holds, and a search could lower it by no more than a decibel.
const ShaperDesign& shaper_design(ModulatorGrade grade, int oversampling);

/// Paths that the grade follows: 1, 4 or 8.
int search_paths(ModulatorGrade grade, int oversampling);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_NOISE_SHAPERS_H_
