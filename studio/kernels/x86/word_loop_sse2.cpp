// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE2 build: a vector per channel, the two channels' steps in turn, so that one computes while
// the other waits for its last decision.

#include "studio/kernels/word_loop.h"

#include "studio/kernels/x86/begin_sse2.inc"

inline __m128i row(const std::int16_t* p) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(p));
}

// Element kLane of eight, in all of them.
template <int kLane>
inline __m128i everywhere(__m128i v) {
  constexpr int kPick = kLane % 4 * 0x55;
  if constexpr (kLane < 4) {
    return _mm_shuffle_epi32(_mm_shufflelo_epi16(v, kPick), 0x00);
  } else {
    return _mm_shuffle_epi32(_mm_shufflehi_epi16(v, kPick), 0xaa);
  }
}

struct Sums {
  __m128i even;
  __m128i odd;

  inline void add(__m128i pair, const std::int16_t (&by)[2][16]) {
    even = _mm_add_epi32(even, _mm_madd_epi16(pair, row(by[0])));
    odd = _mm_add_epi32(odd, _mm_madd_epi16(pair, row(by[1])));
  }
  template <int kShift>
  inline __m128i base() const {
    const __m128i low = _mm_set1_epi32(0xffff);
    const __m128i merged = _mm_or_si128(_mm_and_si128(low, _mm_srli_epi32(even, kShift)),
                                        _mm_andnot_si128(low, _mm_slli_epi32(odd, 16 - kShift)));
    return _mm_or_si128(merged, _mm_set1_epi16(1));
  }
};

struct Channel {
  __m128i base_a;
  __m128i base_c;
  __m128d first;
  __m128 rest[2];
  // Within a word.
  __m128i pair_first;
  __m128i rounded;
  __m128i next_a;
  __m128i next_c;
  __m128d next_first;
  __m128 next_rest[2];

  explicit Channel(const WordLoopState& state, int channel)
      : base_a(row(state.base_a[channel])),
        base_c(row(state.base_c[channel])),
        first(_mm_load_pd(state.first[channel])),
        rest{_mm_load_ps(state.rest[channel]), _mm_load_ps(state.rest[channel] + 4)} {}

  void save(WordLoopState& state, int channel) const {
    _mm_store_si128(reinterpret_cast<__m128i*>(state.base_a[channel]), base_a);
    _mm_store_si128(reinterpret_cast<__m128i*>(state.base_c[channel]), base_c);
    _mm_store_pd(state.first[channel], first);
    _mm_store_ps(state.rest[channel], rest[0]);
    _mm_store_ps(state.rest[channel] + 4, rest[1]);
  }

  // Rounds the state. Whether it is in bounds.
  inline bool round(const WordLoopTables& tables) {
    const __m128i integers = _mm_cvtps_epi32(_mm_cvtpd_ps(first));
    pair_first = _mm_shuffle_epi32(_mm_packs_epi32(integers, integers), 0x00);
    rounded = _mm_packs_epi32(_mm_cvtps_epi32(rest[0]), _mm_cvtps_epi32(rest[1]));
    const __m128i excess =
        _mm_or_si128(_mm_subs_epu16(magnitude(rounded), row(tables.bound_rest)),
                     _mm_subs_epu16(magnitude(pair_first), row(tables.bound_first)));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(excess, _mm_setzero_si128())) == 0xffff;
  }

  // The next bases, but for all bits.
  template <int kTaps>
  inline void make_bases(const WordLoopTables& tables, const double* in) {
    const __m128d scale = _mm_set1_pd(1 << kInputFraction);
    constexpr int kPairs = kTaps / 2 + 1;
    Sums a{_mm_setzero_si128(), _mm_setzero_si128()};
    Sums c = a;
    for (int i = 0; i <= kPairs; ++i) {
      const __m128i two = _mm_cvtpd_epi32(_mm_mul_pd(_mm_loadu_pd(in + 2 * i), scale));
      const __m128i pair = _mm_shuffle_epi32(_mm_packs_epi32(two, two), 0x00);
      if (i < kPairs) a.add(pair, tables.input_to_a[i]);
      c.add(pair, tables.input_to_c[i]);
    }
    const __m128i state[5] = {pair_first, _mm_shuffle_epi32(rounded, 0x00),
                              _mm_shuffle_epi32(rounded, 0x55), _mm_shuffle_epi32(rounded, 0xaa),
                              _mm_shuffle_epi32(rounded, 0xff)};
    for (int i = 0; i < 5; ++i) {
      a.add(state[i], tables.state_to_a[i]);
      c.add(state[i], tables.state_to_c[i]);
    }
    next_a = a.base<kShiftA>();
    next_c = c.base<kShiftC>();
  }

  // The next state, but for all bits.
  template <int kTaps>
  inline void make_state(const WordLoopTables& tables, const double* in) {
    next_first = _mm_mul_pd(_mm_load_pd(tables.first_by_input[0]), _mm_set1_pd(in[0]));
    for (int j = 1; j <= kTaps; ++j) {
      next_first = _mm_add_pd(
          next_first, _mm_mul_pd(_mm_load_pd(tables.first_by_input[j]), _mm_set1_pd(in[j])));
    }
    for (int j = 0; j < 2; ++j) {
      const __m128d x = j == 0 ? _mm_unpacklo_pd(first, first) : _mm_unpackhi_pd(first, first);
      next_first = _mm_add_pd(next_first, _mm_mul_pd(_mm_load_pd(tables.first_by_state[j]), x));
    }
    alignas(16) float x[2 + kWordRest + 2];
    _mm_store_ps(x + kWordRest, _mm_cvtpd_ps(first));
    _mm_store_ps(x, rest[0]);
    _mm_store_ps(x + 4, rest[1]);
    for (int half = 0; half < 2; ++half) {
      __m128 one = term(tables.rest_by_input[0], half, static_cast<float>(in[0]));
      for (int j = 1; j <= kTaps; ++j) {
        one = _mm_add_ps(one, term(tables.rest_by_input[j], half, static_cast<float>(in[j])));
      }
      for (int j = 0; j < 2; ++j) {
        one = _mm_add_ps(one, term(tables.rest_by_state[j], half, x[kWordRest + j]));
      }
      __m128 other = term(tables.rest_by_state[2], half, x[0]);
      for (int j = 3; j < 6; ++j) {
        other = _mm_add_ps(other, term(tables.rest_by_state[j], half, x[j - 2]));
      }
      for (int j = 6; j < 10; ++j) {
        one = _mm_add_ps(one, term(tables.rest_by_state[j], half, x[j - 2]));
      }
      next_rest[half] = _mm_add_ps(one, other);
    }
  }

  inline void take_a(const WordLoopTables& tables, unsigned byte) {
    next_a = _mm_sub_epi16(next_a, row(tables.second[byte]));
    next_c = _mm_sub_epi16(next_c, row(tables.third[byte]));
    next_first = _mm_add_pd(next_first, _mm_load_pd(tables.first_by_a[byte]));
    for (int half = 0; half < 2; ++half) {
      next_rest[half] = _mm_add_ps(next_rest[half], _mm_load_ps(tables.rest_by_a[byte] + 4 * half));
    }
  }

  inline void take_c(const WordLoopTables& tables, unsigned byte) {
    base_a = next_a;
    base_c = _mm_sub_epi16(next_c, row(tables.second[byte]));
    first = _mm_add_pd(next_first, _mm_load_pd(tables.first_by_c[byte]));
    for (int half = 0; half < 2; ++half) {
      rest[half] = _mm_add_ps(next_rest[half], _mm_load_ps(tables.rest_by_c[byte] + 4 * half));
    }
  }

 private:
  static inline __m128i magnitude(__m128i v) {
    return _mm_max_epi16(v, _mm_subs_epi16(_mm_setzero_si128(), v));
  }
  static inline __m128 term(const float (&by)[kWordRest], int half, float value) {
    return _mm_mul_ps(_mm_load_ps(by + 4 * half), _mm_set1_ps(value));
  }
};

// Decision kBit of a half.
template <int kBit>
inline void decide(const WordLoopTables& tables, __m128i& base, __m128i& next) {
  const __m128i minus = _mm_srai_epi16(everywhere<kBit>(base), 15);
  const __m128i own = _mm_sub_epi16(_mm_xor_si128(row(tables.own[kBit]), minus), minus);
  const __m128i other = _mm_sub_epi16(_mm_xor_si128(row(tables.next[kBit]), minus), minus);
  base = _mm_sub_epi16(base, own);
  next = _mm_sub_epi16(next, other);
}

// All decisions of a half, of both channels in turn.
template <int kBit = 0>
inline void decide_all(const WordLoopTables& tables, __m128i& left, __m128i& left_next,
                       __m128i& right, __m128i& right_next) {
  decide<kBit>(tables, left, left_next);
  decide<kBit>(tables, right, right_next);
  if constexpr (kBit < 7) decide_all<kBit + 1>(tables, left, left_next, right, right_next);
}

// The signs with the first in the most significant place, inverted.
inline unsigned byte_of(__m128i base) {
  __m128i v = _mm_shuffle_epi32(base, 0x4e);
  v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0x1b), 0x1b);
  return ~static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(v, v))) & 0xff;
}

template <int kTaps>
std::size_t loop(const WordLoopTables& tables, WordLoopState& state, const double* const* in,
                 std::size_t words, bool checked, std::uint8_t* const* out) {
  Channel left(state, 0);
  Channel right(state, 1);
  std::size_t done = 0;
  for (; done < words; ++done) {
    const bool left_locked = left.round(tables);
    const bool right_locked = right.round(tables);
    if ((checked || done > 0) && !(left_locked && right_locked)) break;
    const std::size_t at = kWordSamples * done;
    left.make_bases<kTaps>(tables, in[0] + at);
    right.make_bases<kTaps>(tables, in[1] + at);
    decide_all(tables, left.base_a, left.base_c, right.base_a, right.base_c);
    left.make_state<kTaps>(tables, in[0] + at);
    right.make_state<kTaps>(tables, in[1] + at);
    const unsigned left_a = byte_of(left.base_a);
    const unsigned right_a = byte_of(right.base_a);
    decide_all(tables, left.base_c, left.next_a, right.base_c, right.next_a);
    left.take_a(tables, left_a);
    right.take_a(tables, right_a);
    const unsigned left_c = byte_of(left.base_c);
    const unsigned right_c = byte_of(right.base_c);
    left.take_c(tables, left_c);
    right.take_c(tables, right_c);
    out[0][at] = static_cast<std::uint8_t>(left_a);
    out[0][at + 1] = static_cast<std::uint8_t>(left_c);
    out[1][at] = static_cast<std::uint8_t>(right_a);
    out[1][at + 1] = static_cast<std::uint8_t>(right_c);
  }
  left.save(state, 0);
  right.save(state, 1);
  return done;
}

std::size_t run(const WordLoopTables& tables, WordLoopState& state, const double* const* in,
                std::size_t words, bool checked, std::uint8_t* const* out) {
  return tables.taps == 4 ? loop<4>(tables, state, in, words, checked, out)
                          : loop<6>(tables, state, in, words, checked, out);
}

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const WordLoopVariant word_loop_sse2 = {kSse2, run};
}
