// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One step of the loop, with weighted states X_i = c_i x_i, and eight of them:
//
//   X' = A X + B (u - v),        y = u + 1 X
//   X' = A^8 X + G (u - v),      y = O X + (I + H)(u - v) but for the quantiser's own v
//
// Row i of O is 1 A^i, column j of G is A^(7-j) B, and H is strictly lower triangular with
// h_(i-j), h_m = 1 A^(m-1) B. Bits act on the q-th half after theirs by
//
//   R_q = O A^(8(q-1)) G.
//
// Where X_1, the charge, is in finer units than the others, it counts in the sum y as
// 1 / charge_scale.

#include "studio/modulator/word_tables.h"

#include <algorithm>
#include <cmath>

#include "studio/modulator/reference_loop.h"

namespace corvin::studio {
namespace {

constexpr int kOrder = kMaxOrder;
constexpr int kBits = 8;

template <int kRows, int kColumns>
struct Matrix {
  double at[kRows][kColumns] = {};
};

template <int kRows, int kInner, int kColumns>
Matrix<kRows, kColumns> operator*(const Matrix<kRows, kInner>& a,
                                  const Matrix<kInner, kColumns>& b) {
  Matrix<kRows, kColumns> product;
  for (int i = 0; i < kRows; ++i) {
    for (int j = 0; j < kColumns; ++j) {
      for (int k = 0; k < kInner; ++k) product.at[i][j] += a.at[i][k] * b.at[k][j];
    }
  }
  return product;
}

using Square = Matrix<kOrder, kOrder>;
using ToState = Matrix<kOrder, kBits>;
using ToBase = Matrix<kBits, kOrder>;
using Between = Matrix<kBits, kBits>;

// One step of the loop, by what it does to each unit vector.
Square step_matrix(const ShaperDesign& shaper) {
  Square a;
  for (int column = 0; column < shaper.order; ++column) {
    double x[kOrder] = {};
    x[column] = 1;
    double in = 0;
    for (int k = 0; k < shaper.order / 2; ++k) {
      const double out = x[2 * k + 1];
      x[2 * k] += in - shaper.g[k] * out;
      x[2 * k + 1] += x[2 * k];
      in = out;
    }
    for (int row = 0; row < shaper.order; ++row) {
      a.at[row][column] = x[row] * (shaper.c[row] / shaper.c[column]);
    }
  }
  return a;
}

// The matrix from states to the second base holds numbers below 128, and the charge's int16 is
// rounded finely where it reaches far: errors of a tenth in y cost a loop headroom.
double charge_scale(const ShaperDesign& shaper) {
  ReferenceLoop loop(shaper);
  loop.x[0] = 1 / shaper.c[0];
  double reach = 0;
  for (int i = 0; i < 4 * kBits; ++i) {
    if (i >= 3 * kBits) reach = std::max(reach, std::fabs(loop.output(0)));
    loop.advance(0);
  }
  double scale = 1;
  while (reach / scale >= 64) scale *= 2;
  return scale;
}

std::int16_t nearest(double value) {
  return static_cast<std::int16_t>(
      static_cast<std::uint16_t>(static_cast<std::int64_t>(std::floor(value + 0.5))));
}

std::int16_t nearest_even(double value) {
  return static_cast<std::int16_t>(
      static_cast<std::uint16_t>(2 * static_cast<std::int64_t>(std::floor(value / 2 + 0.5))));
}

void set_product(std::int16_t (*by_pair)[2][16], int element, int y, double value) {
  std::int16_t* const row = by_pair[element / 2][y % 2];
  row[y / 2 * 2 + element % 2] = nearest(value);
  row[8 + y / 2 * 2 + element % 2] = nearest(value);
}

double bit_sign(int byte, int bit) { return (byte >> (kBits - 1 - bit) & 1) != 0 ? 1.0 : -1.0; }

// Response to the samples from `first` on of a half whose bits are interpolated from them.
template <int kRows>
void add_inputs(const Matrix<kRows, kBits>& by_value, const Interpolation& interpolation, int first,
                double (*sums)[kRows]) {
  for (int j = 0; j < interpolation.taps(); ++j) {
    for (int row = 0; row < kRows; ++row) {
      for (int bit = 0; bit < kBits; ++bit) {
        sums[first + j][row] += by_value.at[row][bit] * interpolation.tap(bit, j);
      }
    }
  }
}

}  // namespace

void make_word_tables(const ShaperDesign& shaper, const Interpolation& interpolation,
                      WordLoopTables& tables) {
  const double scale = charge_scale(shaper);
  Square a = step_matrix(shaper);
  for (int i = 1; i < kOrder; ++i) {
    a.at[0][i] *= scale;
    a.at[i][0] /= scale;
  }
  const Square a2 = a * a;
  const Square a4 = a2 * a2;
  const Square a8 = a4 * a4;
  const Square a16 = a8 * a8;
  ToBase o;
  ToState g;
  Between own;              // I + H
  Matrix<kOrder, 1> reach;  // A^m B; in B, u - v adds to a_1 and b_1 alike
  reach.at[0][0] = shaper.c[0] * scale;
  reach.at[1][0] = shaper.c[1];
  Matrix<1, kOrder> ones;
  for (int i = 0; i < shaper.order; ++i) ones.at[0][i] = 1;
  ones.at[0][0] /= scale;
  Matrix<1, kOrder> row = ones;
  for (int i = 0; i < kBits; ++i) {
    std::copy(row.at[0], row.at[0] + kOrder, o.at[i]);
    for (int j = 0; j < kOrder; ++j) g.at[j][kBits - 1 - i] = reach.at[j][0];
    const double h = (ones * reach).at[0][0];
    for (int j = 0; j < kBits; ++j) {
      if (j == i) own.at[j][j] = 1;
      if (j + i + 1 < kBits) own.at[j + i + 1][j] = h;
    }
    row = row * a;
    reach = a * reach;
  }
  const Between r1 = o * g;
  const Between r2 = o * (a8 * g);
  const Between r3 = o * (a16 * g);
  const ToBase to_a = o * a16;
  const ToBase to_c = to_a * a8;
  const ToState early = a8 * g;

  tables.taps = interpolation.taps();
  tables.charge_scale = scale;
  constexpr double kBase = 1 << kBaseFraction;
  constexpr double kState = 1 << kStateFraction;
  for (int bit = 0; bit < kBits; ++bit) {
    for (int i = 0; i < 2 * kBits; ++i) {
      const int y = i % kBits;
      tables.own[bit][i] = y > bit ? nearest_even(own.at[y][bit] * kBase) : std::int16_t{0};
      tables.next[bit][i] = nearest_even(r1.at[y][bit] * kBase);
    }
  }
  double input_a[kWordMaxTaps + 2][kBits] = {};
  double input_c[kWordMaxTaps + 3][kBits] = {};
  double input_state[kWordMaxTaps + 1][kOrder] = {};
  add_inputs(r2, interpolation, 0, input_a);
  add_inputs(r1, interpolation, 1, input_a);
  add_inputs(own, interpolation, 2, input_a);
  add_inputs(r3, interpolation, 0, input_c);
  add_inputs(r2, interpolation, 1, input_c);
  add_inputs(r1, interpolation, 2, input_c);
  add_inputs(own, interpolation, 3, input_c);
  add_inputs(early, interpolation, 0, input_state);
  add_inputs(g, interpolation, 1, input_state);
  for (int y = 0; y < kBits; ++y) {
    for (int j = 0; j < kOrder; ++j) {
      set_product(tables.state_to_a, j, y, to_a.at[y][j] * (1 << kStateToA));
      set_product(tables.state_to_c, j, y, to_c.at[y][j] * (1 << kStateToC));
    }
    for (int j = 0; j < tables.taps + 2; ++j) {
      set_product(tables.input_to_a, j, y, input_a[j][y] * (1 << kInputToA));
    }
    for (int j = 0; j < tables.taps + 3; ++j) {
      set_product(tables.input_to_c, j, y, input_c[j][y] * (1 << kInputToC));
    }
  }
  for (int i = 0; i < kOrder; ++i) {
    for (int j = 0; j < kOrder; ++j) {
      if (i < 2 && j < 2) tables.first_by_state[j][i] = a16.at[i][j];
      if (i >= 2) tables.rest_by_state[j][i - 2] = static_cast<float>(a16.at[i][j]);
    }
    for (int j = 0; j <= tables.taps; ++j) {
      const double value = input_state[j][i] * kState;
      if (i < 2) tables.first_by_input[j][i] = value;
      if (i >= 2) tables.rest_by_input[j][i - 2] = static_cast<float>(value);
    }
  }
  for (int i = 0; i < 16; ++i) {
    tables.bound_first[i] = nearest(shaper.bound[i % 2] * (i % 2 == 0 ? scale : 1) * kState);
    tables.bound_rest[i] = nearest(shaper.bound[2 + i % kWordRest] * kState);
  }
  for (int byte = 0; byte < 256; ++byte) {
    for (int i = 0; i < kBits; ++i) {
      double second = 0;
      double third = 0;
      for (int bit = 0; bit < kBits; ++bit) {
        second += r2.at[i][bit] * bit_sign(byte, bit);
        third += r3.at[i][bit] * bit_sign(byte, bit);
      }
      tables.second[byte][i] = nearest_even(second * kBase);
      tables.third[byte][i] = nearest_even(third * kBase);
    }
    for (int i = 0; i < kOrder; ++i) {
      double by_a = 0;
      double by_c = 0;
      for (int bit = 0; bit < kBits; ++bit) {
        by_a -= early.at[i][bit] * bit_sign(byte, bit) * kState;
        by_c -= g.at[i][bit] * bit_sign(byte, bit) * kState;
      }
      if (i < 2) {
        tables.first_by_a[byte][i] = by_a;
        tables.first_by_c[byte][i] = by_c;
      } else {
        tables.rest_by_a[byte][i - 2] = static_cast<float>(by_a);
        tables.rest_by_c[byte][i - 2] = static_cast<float>(by_c);
      }
    }
  }
}

}  // namespace corvin::studio
