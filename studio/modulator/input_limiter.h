// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What keeps a loop's input within what it can follow.

#ifndef CORVIN_STUDIO_MODULATOR_INPUT_LIMITER_H_
#define CORVIN_STUDIO_MODULATOR_INPUT_LIMITER_H_

#include <cmath>
#include <cstddef>

namespace corvin::studio {

struct InputLimiter {
  double knee = 1.0;     ///< left alone up to here
  double ceiling = 1.0;  ///< never passed; > knee

  /// One sample: knee + (ceiling - knee) x tanh((|x| - knee) / (ceiling - knee)) with the sign of
  /// x, by the fraction z (27 + z^2) / (27 + 9 z^2), which arrives at 1 with slope 0 at z = 3.
  double operator()(double x) const {
    const double magnitude = std::fabs(x);
    if (magnitude <= knee) return x;
    if (std::isnan(x)) return 0.0;
    const double room = ceiling - knee;
    const double z = (magnitude - knee) / room;
    const double limited = z < 3 ? knee + room * (z * (27 + z * z) / (27 + 9 * z * z)) : ceiling;
    return std::copysign(limited, x);
  }

  /// Many samples.
  void run(const double* in, std::size_t count, double* out) const {
    for (std::size_t i = 0; i < count; ++i) out[i] = (*this)(in[i]);
  }
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_INPUT_LIMITER_H_
