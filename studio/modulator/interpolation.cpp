// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/modulator/interpolation.h"

#include <cstdlib>

#include "studio/math/exact_math.h"

namespace corvin::studio {
namespace {

constexpr int kMaxUnknowns = 4 * Interpolation::kMaxTaps;

// Integral of cos(2 pi f n) over low <= f <= high.
double cosine_integral(int n, double low, double high) {
  if (n == 0) return high - low;
  const double turn = 2 * kPi * n;
  return (sine_cosine(turn * high).sine - sine_cosine(turn * low).sine) / turn;
}

// Solves a symmetric positive definite system in place.
void solve(double (&matrix)[kMaxUnknowns][kMaxUnknowns], double (&right)[kMaxUnknowns], int size) {
  for (int k = 0; k < size; ++k) {
    for (int row = k + 1; row < size; ++row) {
      const double factor = matrix[row][k] / matrix[k][k];
      for (int column = k; column < size; ++column) {
        matrix[row][column] -= factor * matrix[k][column];
      }
      right[row] -= factor * right[k];
    }
  }
  for (int k = size - 1; k >= 0; --k) {
    for (int column = k + 1; column < size; ++column) right[k] -= matrix[k][column] * right[column];
    right[k] /= matrix[k][k];
  }
}

}  // namespace

Interpolation::Interpolation(bool wide_band) : taps_(wide_band ? 6 : 4) {
  // The unknowns are h_0 ... h_(4 taps - 1), one half of the impulse response; frequencies in parts
  // of the output rate. What lies between the bands is free but for a little weight, which keeps
  // the system well conditioned.
  constexpr double kFree = 1e-11;
  const double edge = (wide_band ? 0.1418 : 0.0681) / kPhases;
  const int size = 4 * taps_;
  double matrix[kMaxUnknowns][kMaxUnknowns];
  double right[kMaxUnknowns];
  double moment[2 * kMaxUnknowns];
  for (int n = 0; n < 2 * size; ++n) {
    moment[n] = cosine_integral(n, 0, edge);
    for (int image = 1; image <= kPhases / 2; ++image) {
      const double centre = static_cast<double>(image) / kPhases;
      const double top = image == kPhases / 2 ? centre : centre + edge;
      moment[n] += cosine_integral(n, centre - edge, top);
    }
  }
  moment[0] += kFree;
  for (int i = 0; i < size; ++i) {
    // cos(i x) cos(j x) = (cos((i + j) x) + cos((i - j) x)) / 2; taps but the middle count twice.
    const double weight = i == 0 ? 1 : 2;
    for (int j = 0; j < size; ++j) {
      matrix[i][j] =
          weight * (j == 0 ? 1 : 2) * (moment[i + j] + moment[i < j ? j - i : i - j]) / 2;
    }
    right[i] = kPhases * weight * cosine_integral(i, 0, edge);
  }
  solve(matrix, right, size);
  for (int phase = 0; phase < kPhases; ++phase) {
    for (int j = 0; j < taps_; ++j) {
      const int distance = std::abs(phase - kPhases * (j - history()));
      phases_[phase][j] = distance < size ? right[distance] : 0.0;
    }
  }
}

double Interpolation::response(double frequency) const {
  double sum = 0;
  for (int phase = 0; phase < kPhases; ++phase) {
    for (int j = 0; j < taps_; ++j) {
      const int distance = phase - kPhases * (j - history());
      sum += phases_[phase][j] * sine_cosine(2 * kPi * frequency * distance / kPhases).cosine;
    }
  }
  return sum / kPhases;
}

}  // namespace corvin::studio
