// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The modulator's loop in words of sixteen bits, two halves of eight, for a pair of channels.
//
// The loop is linear but for the decisions, so what a half sees is known beforehand
// except for the bits of that half and the one before: its base, eight quantiser inputs y.
// With each decision the base's later lanes and the next half's base change by fixed columns.
// All this needs few bits, since errors of y are shaped away like those of the quantiser: int16
// with seven fractional bits, wrapping, and odd, so that no y is 0. What must be exact is the
// state: it moves once in a word, by matrices for state and input and by tables for the bits, its
// first two elements in double (they hold the charge that the bits still owe) and the others in
// float.
//
// The bits are a function of the input alone: every rounding and the order of all additions of
// floating-point numbers is given below and no operation is fused.

#ifndef CORVIN_STUDIO_KERNELS_WORD_LOOP_H_
#define CORVIN_STUDIO_KERNELS_WORD_LOOP_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "studio/kernels/builds.h"

namespace corvin::studio {

inline constexpr int kWordSamples = 2;     ///< input samples of a word
inline constexpr int kWordRest = 8;        ///< float elements of a state, behind the two doubles
inline constexpr int kWordMaxTaps = 6;     ///< of the last interpolation
inline constexpr int kBaseFraction = 7;    ///< fractional bits of y
inline constexpr int kStateFraction = 10;  ///< of states
inline constexpr int kInputFraction = 13;
/// Fractional bits of the matrices that make the bases of the halves a and c from states and
/// inputs, so that both products agree.
inline constexpr int kStateToA = 9, kInputToA = 6, kShiftA = 12;
inline constexpr int kStateToC = 8, kInputToC = 5, kShiftC = 11;

/// Numbers of one loop. States are weighted (x_i c_i) and times 2^kStateFraction, the first of them
/// times charge_scale, a power of two, as well. Inputs are the samples s_0 ... of a word, s_0 the
/// first that its first bits depend on. A byte holds the bits of a half as they are written: the
/// earliest in the most significant place.
struct WordLoopTables {
  int taps = 4;             ///< of the interpolation: 4 or 6
  double charge_scale = 1;  ///< the kernel itself never needs it
  /// What decision i subtracts if +1 and adds if -1, from the half's own base and from the
  /// next one's. Even. Like all rows of 16 twice the same, once per channel.
  alignas(64) std::int16_t own[8][16];
  std::int16_t next[8][16];
  /// Bases of the halves a and c of the next word, from pairs of elements and of inputs as
  /// multiply-add instructions take them: [pair][y odd][y / 2][which of the pair].
  std::int16_t state_to_a[5][2][16], input_to_a[(kWordMaxTaps + 2) / 2][2][16];
  std::int16_t state_to_c[5][2][16], input_to_c[(kWordMaxTaps + 4) / 2][2][16];
  /// What the bits of a half subtract from the bases two and three halves on. Even.
  alignas(64) std::int16_t second[256][8], third[256][8];
  /// The next state: [element][state or input], and by the bytes of the halves a and c.
  alignas(64) double first_by_state[2][2], first_by_input[kWordMaxTaps + 1][2];
  double first_by_a[256][2], first_by_c[256][2];
  alignas(64) float rest_by_state[10][kWordRest], rest_by_input[kWordMaxTaps + 1][kWordRest];
  alignas(64) float rest_by_a[256][kWordRest], rest_by_c[256][kWordRest];
  /// Bounds of a loop in lock, of the rounded state.
  /// bound_first holds the first two elements' in turn, bound_rest the others'.
  alignas(64) std::int16_t bound_first[16], bound_rest[16];
};

/// Both channels at the begin of a word.
struct WordLoopState {
  alignas(64) double first[2][2] = {};
  float rest[2][kWordRest] = {};
  std::int16_t base_a[2][8] = {};  ///< odd
  std::int16_t base_c[2][8] = {};  ///< but for what the bits of half a take
};

struct RoundedState {
  std::int16_t at[2 + kWordRest];
};

/// A channel's state as the bases and the check see it.
inline RoundedState rounded_state(const WordLoopState& state, int channel) {
  RoundedState rounded;
  for (int i = 0; i < 2 + kWordRest; ++i) {
    const float value =
        i < 2 ? static_cast<float>(state.first[channel][i]) : state.rest[channel][i - 2];
    // Added and taken away again, it leaves the nearest integer.
    constexpr float kRounder = 0x1.8p23f;
    const float nearest = (value + kRounder) - kRounder;
    rounded.at[i] = static_cast<std::int16_t>(std::clamp(nearest, -32768.0f, 32767.0f));
  }
  return rounded;
}

inline bool in_lock(const WordLoopTables& tables, const RoundedState& state) {
  for (int i = 0; i < 2 + kWordRest; ++i) {
    const int bound = i < 2 ? tables.bound_first[i] : tables.bound_rest[i - 2];
    if (std::abs(int{state.at[i]}) > bound) return false;
  }
  return true;
}

/// Runs words, per channel:
///
///   X = saturate16(nearest(float(state)));   stop if a |X_i| > bound_i
///   s = float(sample), S = nearest(sample x 2^kInputFraction)
///   A = ((sum state_to_a X + sum input_to_a S) >> kShiftA) | 1, of taps + 2 inputs
///   C = ((sum state_to_c X + sum input_to_c S) >> kShiftC) | 1, of taps + 3 inputs
///   decide base_a: y_i < 0 is bit 0; own changes base_a and next changes base_c
///   decide base_c: own changes base_c and next changes A
///   base_a = A - second[byte a]
///   base_c = C - third[byte a] - second[byte c]
///   first = by_input s_0 ... s_taps (doubles) + by_state x_1, x_2
///           + by_a + by_c, in this order
///   rest = (by_input s_0 ... s_taps + by_state x_1, x_2, x_7 ... x_10) + (by_state x_3 ... x_6)
///          + by_a + by_c, in this order, in float with x_1 and x_2 rounded
///
/// Everything integer wraps; sums of products are 32 bits wide. Roundings go to the nearest, ties
/// to even. |float(state)| stays below 2^22, since it is within the bounds one word before.
///
/// @param in       in[2]: s_0 of the first word; 2 x words + taps + 6 samples are read, those
///                 beyond what the formulas name for nothing, but finite
/// @param checked  false: the first word runs whatever its state is
/// @param out      out[2], 2 x words bytes
/// @return         words done; fewer when a state at the begin of the next one is out of bounds
using WordLoop = std::size_t (*)(const WordLoopTables& tables, WordLoopState& state,
                                 const double* const* in, std::size_t words, bool checked,
                                 std::uint8_t* const* out);

struct WordLoopVariant {
  InstructionSet set;
  WordLoop run = nullptr;
};

template <>
std::span<const WordLoopVariant* const> builds<WordLoopVariant>();

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_WORD_LOOP_H_
