// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The transcendental functions that filter design needs, from basic arithmetic alone: a library's
// last bit differs between systems, and here every bit of a filter is part of the output bytes.
// Not a general mathematics library: ranges are those of filter design.

#ifndef CORVIN_STUDIO_MATH_EXACT_MATH_H_
#define CORVIN_STUDIO_MATH_EXACT_MATH_H_

#include <cstdint>

namespace corvin::studio {

inline constexpr double kPi = 3.14159265358979323846;

struct SineCosine {
  double sine, cosine;
};

/// Sine and cosine of 2 pi numerator / denominator; the reduction is exact. denominator > 0,
/// |numerator| and denominator below 2^58.
SineCosine turn(std::int64_t numerator, std::int64_t denominator);

/// Sine and cosine of an angle, |radians| < 1e5, error below 1e-15 x (1 + |radians|).
SineCosine sine_cosine(double radians);

/// Arc sine for |x| <= 0.9.
double arc_sine(double x);

/// Modified Bessel function of the first kind, order 0, for 0 <= x <= 30.
double bessel_i0(double x);

/// Natural logarithm of a positive normal number.
double natural_log(double x);

/// e^x for |x| < 700.
double exponential(double x);

/// The factor for a level in decibels, |db| <= 1000.
double from_db(double db);

/// 20 log10 |x| for x other than 0.
double to_db(double x);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MATH_EXACT_MATH_H_
