// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference: one channel after the other in each word.

#include <algorithm>

#include "studio/kernels/word_loop.h"

namespace corvin::studio {
namespace {

std::int16_t wrap16(std::uint32_t value) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
}

// Added and taken away again, it leaves the nearest integer.
std::int16_t rounded_input(double sample) {
  constexpr double kRounder = 0x1.8p52;
  return static_cast<std::int16_t>((sample * (1 << kInputFraction) + kRounder) - kRounder);
}

std::uint16_t word(std::int16_t value) { return static_cast<std::uint16_t>(value); }

void subtract(std::int16_t (&from)[8], const std::int16_t* row) {
  for (int i = 0; i < 8; ++i) from[i] = static_cast<std::int16_t>(word(from[i]) - word(row[i]));
}

// A half's bits. Nobody can predict them, so the sign goes into the rows without a branch.
unsigned decide(const WordLoopTables& tables, std::int16_t (&base)[8], std::int16_t (&next)[8]) {
  unsigned bits = 0;
  for (int i = 0; i < 8; ++i) {
    const std::uint16_t minus = base[i] < 0 ? 0xffff : 0;
    bits = bits << 1 | (~minus & 1u);
    for (int j = 0; j < 8; ++j) {
      const int own = (word(tables.own[i][j]) ^ minus) - minus;
      const int other = (word(tables.next[i][j]) ^ minus) - minus;
      base[j] = static_cast<std::int16_t>(word(base[j]) - own);
      next[j] = static_cast<std::int16_t>(word(next[j]) - other);
    }
  }
  return bits;
}

// The pairs' contributions to y.
std::uint32_t products(const std::int16_t (*by_pair)[2][16], const std::int16_t* values, int pairs,
                       int y) {
  std::uint32_t sum = 0;
  for (int i = 0; i < 2 * pairs; ++i) {
    sum += static_cast<std::uint32_t>(by_pair[i / 2][y % 2][y / 2 * 2 + i % 2] * values[i]);
  }
  return sum;
}

void run_word(const WordLoopTables& tables, WordLoopState& state, int channel,
              const RoundedState& rounded, const double* in, std::uint8_t* out) {
  std::int16_t input[kWordMaxTaps + 4];
  for (int j = 0; j < tables.taps + 4; ++j) input[j] = rounded_input(in[j]);
  const int pairs = tables.taps / 2 + 1;
  std::int16_t next_a[8], next_c[8];
  for (int y = 0; y < 8; ++y) {
    next_a[y] = wrap16((products(tables.state_to_a, rounded.at, 5, y) +
                        products(tables.input_to_a, input, pairs, y)) >>
                           kShiftA |
                       1u);
    next_c[y] = wrap16((products(tables.state_to_c, rounded.at, 5, y) +
                        products(tables.input_to_c, input, pairs + 1, y)) >>
                           kShiftC |
                       1u);
  }

  const unsigned a = decide(tables, state.base_a[channel], state.base_c[channel]);
  const unsigned c = decide(tables, state.base_c[channel], next_a);
  out[0] = static_cast<std::uint8_t>(a);
  out[1] = static_cast<std::uint8_t>(c);
  subtract(next_a, tables.second[a]);
  subtract(next_c, tables.third[a]);
  subtract(next_c, tables.second[c]);
  std::copy(next_a, next_a + 8, state.base_a[channel]);
  std::copy(next_c, next_c + 8, state.base_c[channel]);

  double first[2];
  for (int i = 0; i < 2; ++i) {
    double sum = tables.first_by_input[0][i] * in[0];
    for (int j = 1; j <= tables.taps; ++j) sum += tables.first_by_input[j][i] * in[j];
    for (int j = 0; j < 2; ++j) sum += tables.first_by_state[j][i] * state.first[channel][j];
    first[i] = sum + tables.first_by_a[a][i] + tables.first_by_c[c][i];
  }
  float rest[kWordRest];
  const float* const x = state.rest[channel];
  for (int i = 0; i < kWordRest; ++i) {
    float one = tables.rest_by_input[0][i] * static_cast<float>(in[0]);
    for (int j = 1; j <= tables.taps; ++j) {
      one += tables.rest_by_input[j][i] * static_cast<float>(in[j]);
    }
    for (int j = 0; j < 2; ++j) {
      one += tables.rest_by_state[j][i] * static_cast<float>(state.first[channel][j]);
    }
    float other = tables.rest_by_state[2][i] * x[0];
    for (int j = 3; j < 6; ++j) other += tables.rest_by_state[j][i] * x[j - 2];
    for (int j = 6; j < 10; ++j) one += tables.rest_by_state[j][i] * x[j - 2];
    rest[i] = one + other + tables.rest_by_a[a][i] + tables.rest_by_c[c][i];
  }
  std::copy(first, first + 2, state.first[channel]);
  std::copy(rest, rest + kWordRest, state.rest[channel]);
}

std::size_t run(const WordLoopTables& tables, WordLoopState& state, const double* const* in,
                std::size_t words, bool checked, std::uint8_t* const* out) {
  for (std::size_t word = 0; word < words; ++word) {
    const RoundedState rounded[2] = {rounded_state(state, 0), rounded_state(state, 1)};
    if ((checked || word > 0) && !(in_lock(tables, rounded[0]) && in_lock(tables, rounded[1]))) {
      return word;
    }
    for (int channel = 0; channel < 2; ++channel) {
      run_word(tables, state, channel, rounded[channel], in[channel] + kWordSamples * word,
               out[channel] + kWordSamples * word);
    }
  }
  return words;
}

}  // namespace

extern const WordLoopVariant word_loop_portable = {kPortable, run};

}  // namespace corvin::studio
