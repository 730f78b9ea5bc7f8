// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build: both channels in one vector, the left one in its low half.

#include "studio/kernels/word_loop.h"

#include "studio/kernels/x86/begin_avx2.inc"

constexpr std::size_t kSlice = 32;  // words whose inputs are converted at a time
constexpr std::size_t kSliceSamples = kSlice * kWordSamples + kWordMaxTaps + 2;

// Inputs in the forms that the loop multiplies.
struct Inputs {
  alignas(32) double wide[kSliceSamples][4];  // left, left, right, right
  std::int16_t pairs[kSliceSamples / 2][16];  // samples 2i and 2i + 1, four times per channel
  float narrow[2][kSliceSamples];
};

void convert(const double* const* in, std::size_t samples, Inputs& inputs) {
  const __m256d scale = _mm256_set1_pd(1 << kInputFraction);
  const __m256i spread = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
  for (std::size_t i = 0; i < samples; i += 2) {
    const __m256d two = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(in[0] + i)),
                                             _mm_loadu_pd(in[1] + i), 1);
    _mm256_store_pd(inputs.wide[i], _mm256_movedup_pd(two));
    _mm256_store_pd(inputs.wide[i + 1], _mm256_permute_pd(two, 15));
    const __m128 narrow = _mm256_cvtpd_ps(two);
    _mm_storel_pi(reinterpret_cast<__m64*>(inputs.narrow[0] + i), narrow);
    _mm_storeh_pi(reinterpret_cast<__m64*>(inputs.narrow[1] + i), narrow);
    const __m128i integers = _mm256_cvtpd_epi32(_mm256_mul_pd(two, scale));
    const __m128i pairs = _mm_packs_epi32(integers, integers);
    _mm256_store_si256(reinterpret_cast<__m256i*>(inputs.pairs[i / 2]),
                       _mm256_permutevar8x32_epi32(_mm256_castsi128_si256(pairs), spread));
  }
}

inline __m256i row(const std::int16_t* p) {
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(p));
}

inline __m256i half_rows(const std::int16_t* left, const std::int16_t* right) {
  return _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(left))),
      _mm_load_si128(reinterpret_cast<const __m128i*>(right)), 1);
}

// Compilers would cluster what is spread with care: values pinned one after the other are made in
// this order.
template <typename Vector>
inline void pin(Vector& vector) {
  asm volatile("" : "+x"(vector));
}
template <typename Vector>
inline void pin(Vector& first, Vector& second) {
  asm volatile("" : "+x"(first), "+x"(second));
}

// Decision i of a half. The base waits for nothing but the broadcast of the sign and a blend,
// the shortest chain; the next base has time for fewer instructions.
template <int kBit>
inline void decide(const WordLoopTables& tables, __m256i& base, __m256i& next) {
  const __m256i y = _mm256_shuffle_epi8(base, _mm256_set1_epi8(2 * kBit + 1));
  const __m256i own = row(tables.own[kBit]);
  const __m256i other = row(tables.next[kBit]);
  base = _mm256_blendv_epi8(_mm256_sub_epi16(base, own), _mm256_add_epi16(base, own), y);
  next = _mm256_sub_epi16(next, _mm256_sign_epi16(other, _mm256_or_si256(y, _mm256_set1_epi16(1))));
}

struct Bytes {
  unsigned left;
  unsigned right;
};

inline Bytes bytes_of(__m256i base) {
  const __m256i reversed = _mm256_set_epi64x(0x01030507090b0d0f, 0x01030507090b0d0f,
                                             0x01030507090b0d0f, 0x01030507090b0d0f);
  const unsigned mask =
      ~static_cast<unsigned>(_mm256_movemask_epi8(_mm256_shuffle_epi8(base, reversed)));
  return {mask & 0xff, mask >> 16 & 0xff};
}

// Sums of products for the even and the odd y of a base.
struct Sums {
  __m256i even;
  __m256i odd;

  inline void multiply(__m256i pair, const std::int16_t (&by)[2][16]) {
    even = _mm256_madd_epi16(pair, row(by[0]));
    odd = _mm256_madd_epi16(pair, row(by[1]));
  }
  inline void add(__m256i pair, const std::int16_t (&by)[2][16]) {
    even = _mm256_add_epi32(even, _mm256_madd_epi16(pair, row(by[0])));
    odd = _mm256_add_epi32(odd, _mm256_madd_epi16(pair, row(by[1])));
  }
  template <int kShift>
  inline __m256i base() const {
    const __m256i merged = _mm256_blend_epi16(_mm256_srli_epi32(even, kShift),
                                              _mm256_slli_epi32(odd, 16 - kShift), 0xaa);
    return _mm256_or_si256(merged, _mm256_set1_epi16(1));
  }
};

// The next state's floats of one channel, two chains of additions.
struct Rest {
  __m256 one;
  __m256 other;

  static inline __m256 term(const float (&by)[kWordRest], const float& value) {
    return _mm256_mul_ps(_mm256_load_ps(by), _mm256_broadcast_ss(&value));
  }
  template <int kTaps>
  inline void add_inputs(const WordLoopTables& tables, const float* samples) {
    one = term(tables.rest_by_input[0], samples[0]);
    for (int j = 1; j <= kTaps; ++j)
      one = _mm256_add_ps(one, term(tables.rest_by_input[j], samples[j]));
  }
  inline void add_state(const WordLoopTables& tables, const float* first, const float* x) {
    for (int j = 0; j < 2; ++j) one = _mm256_add_ps(one, term(tables.rest_by_state[j], first[j]));
    other = term(tables.rest_by_state[2], x[0]);
    for (int j = 3; j < 6; ++j)
      other = _mm256_add_ps(other, term(tables.rest_by_state[j], x[j - 2]));
    for (int j = 6; j < 10; ++j) one = _mm256_add_ps(one, term(tables.rest_by_state[j], x[j - 2]));
    one = _mm256_add_ps(one, other);
  }
};

inline __m256d column(const double (&two)[2]) {
  return _mm256_broadcast_pd(reinterpret_cast<const __m128d*>(two));
}

inline __m256d halves(const double (*by_byte)[2], Bytes bytes) {
  return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(by_byte[bytes.left])),
                              _mm_load_pd(by_byte[bytes.right]), 1);
}

// What the decisions wait for is spread between them: the inputs' share first, the states' share,
// which becomes known some fifty cycles after the last bit, from the middle on. In plain order the
// processor's window fills with what has to wait, which costs a sixth.
template <int kTaps>
struct Loop {
  const WordLoopTables& tables;
  __m256i base_a;
  __m256i base_c;
  __m256d first;
  __m256 left;
  __m256 right;

  // False: nothing happens, since a state is out of bounds.
  inline bool word(const Inputs& inputs, std::size_t number, bool checked, std::uint8_t* out_left,
                   std::uint8_t* out_right) {
    constexpr int kPairs = kTaps / 2 + 1;
    const std::int16_t(*pairs)[16] = inputs.pairs + number;
    __m256i a_now = base_a;
    __m256i c_now = base_c;
    decide<0>(tables, a_now, c_now);
    Sums sums_a, sums_c;
    sums_a.multiply(row(pairs[0]), tables.input_to_a[0]);
    for (int i = 1; i < kPairs; ++i) sums_a.add(row(pairs[i]), tables.input_to_a[i]);
    pin(sums_a.even, sums_a.odd);
    decide<1>(tables, a_now, c_now);
    sums_c.multiply(row(pairs[0]), tables.input_to_c[0]);
    for (int i = 1; i <= kPairs; ++i) sums_c.add(row(pairs[i]), tables.input_to_c[i]);
    pin(sums_c.even, sums_c.odd);
    decide<2>(tables, a_now, c_now);
    const double(*wide)[4] = inputs.wide + kWordSamples * number;
    __m256d next_first = _mm256_mul_pd(column(tables.first_by_input[0]), _mm256_load_pd(wide[0]));
    for (int j = 1; j <= kTaps; ++j) {
      next_first = _mm256_add_pd(
          next_first, _mm256_mul_pd(column(tables.first_by_input[j]), _mm256_load_pd(wide[j])));
    }
    pin(next_first);
    decide<3>(tables, a_now, c_now);
    Rest next_left, next_right;
    next_left.template add_inputs<kTaps>(tables, inputs.narrow[0] + kWordSamples * number);
    pin(next_left.one);
    decide<4>(tables, a_now, c_now);
    next_right.template add_inputs<kTaps>(tables, inputs.narrow[1] + kWordSamples * number);
    pin(next_right.one);
    decide<5>(tables, a_now, c_now);
    const __m128 first_narrow = _mm256_cvtpd_ps(first);
    const __m128i first_integers = _mm_cvtps_epi32(first_narrow);
    const __m256i pair_first = _mm256_permutevar8x32_epi32(
        _mm256_castsi128_si256(_mm_packs_epi32(first_integers, first_integers)),
        _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
    const __m256i rest_rounded = _mm256_permute4x64_epi64(
        _mm256_packs_epi32(_mm256_cvtps_epi32(left), _mm256_cvtps_epi32(right)), 0xd8);
    const __m256i excess =
        _mm256_or_si256(_mm256_subs_epu16(_mm256_abs_epi16(rest_rounded), row(tables.bound_rest)),
                        _mm256_subs_epu16(_mm256_abs_epi16(pair_first), row(tables.bound_first)));
    if (checked && !_mm256_testz_si256(excess, excess)) return false;
    alignas(32) float x[2][kWordRest];
    alignas(16) float x_first[4];
    _mm256_store_ps(x[0], left);
    _mm256_store_ps(x[1], right);
    _mm_store_ps(x_first, first_narrow);
    decide<6>(tables, a_now, c_now);
    const __m256i state[5] = {pair_first, _mm256_shuffle_epi32(rest_rounded, 0x00),
                              _mm256_shuffle_epi32(rest_rounded, 0x55),
                              _mm256_shuffle_epi32(rest_rounded, 0xaa),
                              _mm256_shuffle_epi32(rest_rounded, 0xff)};
    for (int i = 0; i < 5; ++i) sums_a.add(state[i], tables.state_to_a[i]);
    __m256i next_a = sums_a.template base<kShiftA>();
    pin(next_a);
    decide<7>(tables, a_now, c_now);
    const Bytes a = bytes_of(a_now);

    decide<0>(tables, c_now, next_a);
    for (int i = 0; i < 5; ++i) sums_c.add(state[i], tables.state_to_c[i]);
    __m256i next_c = sums_c.template base<kShiftC>();
    pin(next_c);
    decide<1>(tables, c_now, next_a);
    next_first = _mm256_add_pd(
        next_first, _mm256_mul_pd(column(tables.first_by_state[0]), _mm256_movedup_pd(first)));
    next_first = _mm256_add_pd(
        next_first, _mm256_mul_pd(column(tables.first_by_state[1]), _mm256_permute_pd(first, 15)));
    pin(next_first);
    decide<2>(tables, c_now, next_a);
    next_left.add_state(tables, x_first, x[0]);
    pin(next_left.one);
    decide<3>(tables, c_now, next_a);
    next_right.add_state(tables, x_first + 2, x[1]);
    pin(next_right.one);
    decide<4>(tables, c_now, next_a);
    next_a = _mm256_sub_epi16(next_a, half_rows(tables.second[a.left], tables.second[a.right]));
    next_c = _mm256_sub_epi16(next_c, half_rows(tables.third[a.left], tables.third[a.right]));
    pin(next_a, next_c);
    decide<5>(tables, c_now, next_a);
    next_first = _mm256_add_pd(next_first, halves(tables.first_by_a, a));
    next_left.one = _mm256_add_ps(next_left.one, _mm256_load_ps(tables.rest_by_a[a.left]));
    next_right.one = _mm256_add_ps(next_right.one, _mm256_load_ps(tables.rest_by_a[a.right]));
    pin(next_first);
    pin(next_left.one, next_right.one);
    decide<6>(tables, c_now, next_a);
    decide<7>(tables, c_now, next_a);
    const Bytes c = bytes_of(c_now);

    base_a = next_a;
    base_c = _mm256_sub_epi16(next_c, half_rows(tables.second[c.left], tables.second[c.right]));
    first = _mm256_add_pd(next_first, halves(tables.first_by_c, c));
    left = _mm256_add_ps(next_left.one, _mm256_load_ps(tables.rest_by_c[c.left]));
    right = _mm256_add_ps(next_right.one, _mm256_load_ps(tables.rest_by_c[c.right]));
    out_left[0] = static_cast<std::uint8_t>(a.left);
    out_left[1] = static_cast<std::uint8_t>(c.left);
    out_right[0] = static_cast<std::uint8_t>(a.right);
    out_right[1] = static_cast<std::uint8_t>(c.right);
    return true;
  }
};

template <int kTaps>
std::size_t loop(const WordLoopTables& tables, WordLoopState& state, const double* const* in,
                 std::size_t words, bool checked, std::uint8_t* const* out) {
  Loop<kTaps> now{tables,
                  row(state.base_a[0]),
                  row(state.base_c[0]),
                  _mm256_load_pd(state.first[0]),
                  _mm256_load_ps(state.rest[0]),
                  _mm256_load_ps(state.rest[1])};
  Inputs inputs;
  std::size_t done = 0;
  bool locked = true;
  while (done < words && locked) {
    const std::size_t count = words - done < kSlice ? words - done : kSlice;
    const double* const from[2] = {in[0] + kWordSamples * done, in[1] + kWordSamples * done};
    convert(from, kWordSamples * count + kTaps + 2, inputs);
    for (std::size_t i = 0; i < count; ++i) {
      locked =
          now.word(inputs, i, checked, out[0] + kWordSamples * done, out[1] + kWordSamples * done);
      if (!locked) break;
      checked = true;
      ++done;
    }
  }
  _mm256_store_si256(reinterpret_cast<__m256i*>(state.base_a[0]), now.base_a);
  _mm256_store_si256(reinterpret_cast<__m256i*>(state.base_c[0]), now.base_c);
  _mm256_store_pd(state.first[0], now.first);
  _mm256_store_ps(state.rest[0], now.left);
  _mm256_store_ps(state.rest[1], now.right);
  return done;
}

std::size_t run(const WordLoopTables& tables, WordLoopState& state, const double* const* in,
                std::size_t words, bool checked, std::uint8_t* const* out) {
  return tables.taps == 4 ? loop<4>(tables, state, in, words, checked, out)
                          : loop<6>(tables, state, in, words, checked, out);
}

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const WordLoopVariant word_loop_avx2 = {kAvx2, run};
}
