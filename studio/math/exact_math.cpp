// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Taylor series on reduced arguments, each summed to below one unit in the last place.

#include "studio/math/exact_math.h"

#include <cmath>

namespace corvin::studio {
namespace {

constexpr double kLn2High =
    0x1.62e42fee00000p-1;  // low bits zero: products with an exponent are exact
constexpr double kLn2Low = 0x1.a39ef35793c76p-33;
constexpr double kDbPerNeper = 8.68588963806503655302;

// |x| <= pi / 4: nine terms each, the next one is below 2^-60.
SineCosine small_angle(double x) {
  const double square = x * x;
  double sine = 1.0;
  double cosine = 1.0;
  for (int k = 9; k > 0; --k) {
    sine = 1.0 - square / (2 * k * (2 * k + 1)) * sine;
    cosine = 1.0 - square / ((2 * k - 1) * (2 * k)) * cosine;
  }
  return {x * sine, cosine};
}

SineCosine rotate(SineCosine value, std::int64_t quarter_turns) {
  switch (quarter_turns & 3) {
    case 1:
      return {value.cosine, -value.sine};
    case 2:
      return {-value.sine, -value.cosine};
    case 3:
      return {-value.cosine, value.sine};
    default:
      return value;
  }
}

}  // namespace

SineCosine turn(std::int64_t numerator, std::int64_t denominator) {
  numerator %= denominator;
  if (numerator < 0) numerator += denominator;
  const std::int64_t quarters = (8 * numerator + denominator) / (2 * denominator);
  const double rest = static_cast<double>(4 * numerator - quarters * denominator) /
                      static_cast<double>(4 * denominator);
  return rotate(small_angle(2 * kPi * rest), quarters);
}

SineCosine sine_cosine(double radians) {
  constexpr double kHalfPiHigh = 0x1.921fb54400000p+0;
  constexpr double kHalfPiLow = 0x1.0b4611a626331p-34;
  const double quarters = std::floor(radians / (kPi / 2) + 0.5);
  const double rest = (radians - quarters * kHalfPiHigh) - quarters * kHalfPiLow;
  return rotate(small_angle(rest), static_cast<std::int64_t>(quarters));
}

double arc_sine(double x) {
  double angle = x;
  // Newton's steps square the error; eight are more than enough from anywhere below 0.9.
  for (int step = 0; step < 8; ++step) {
    const SineCosine at = sine_cosine(angle);
    angle += (x - at.sine) / at.cosine;
  }
  return angle;
}

double bessel_i0(double x) {
  const double quarter_square = x * x / 4;
  double term = 1.0;
  double sum = 1.0;
  for (int k = 1; k < 80; ++k) {
    term *= quarter_square / (static_cast<double>(k) * k);
    sum += term;
  }
  return sum;
}

double natural_log(double x) {
  int exponent = 0;
  double mantissa = std::frexp(x, &exponent);
  if (mantissa < 0.70710678118654752) {
    mantissa *= 2;
    --exponent;
  }
  // 2 artanh(s), |s| <= 0.1716.
  const double s = (mantissa - 1) / (mantissa + 1);
  const double square = s * s;
  double sum = 0.0;
  for (int k = 25; k > 0; k -= 2) sum = sum * square + 1.0 / k;
  return exponent * kLn2High + (exponent * kLn2Low + 2 * s * sum);
}

double exponential(double x) {
  const double twos = std::floor(x / (kLn2High + kLn2Low) + 0.5);
  const double rest = (x - twos * kLn2High) - twos * kLn2Low;
  double sum = 1.0;
  for (int k = 16; k > 0; --k) sum = 1.0 + rest / k * sum;
  return std::ldexp(sum, static_cast<int>(twos));
}

double from_db(double db) { return exponential(db / kDbPerNeper); }

double to_db(double x) { return kDbPerNeper * natural_log(std::fabs(x)); }

}  // namespace corvin::studio
