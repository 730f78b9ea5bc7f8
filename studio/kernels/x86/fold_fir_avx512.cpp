// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/fold_fir.h"

#if defined(__i386__) || defined(__x86_64__)

#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 takes its own header's undefined vectors, which masks never let through, for mistakes.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512vl,avx512dq,avx512bw"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512vl,avx512dq,avx512bw")
#endif

namespace corvin::studio {
namespace {

using Vec = __m512d;
using Ints = __m256i;
constexpr std::size_t kLanes = 8;

Ints load(const std::int32_t* in) { return *reinterpret_cast<const Ints*>(in); }
Ints add(Ints a, Ints b) { return _mm256_add_epi32(a, b); }
Vec to_double(Ints in) { return _mm512_cvtepi32_pd(in); }
Vec broadcast(double value) { return _mm512_set1_pd(value); }

#include "studio/kernels/fold_fir_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const FoldFirVariant fold_fir_avx512;
const FoldFirVariant fold_fir_avx512 = {{"AVX-512", 30, kCpuAvx512}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const FoldFirVariant fold_fir_avx512;
const FoldFirVariant fold_fir_avx512 = {};

}  // namespace corvin::studio

#endif
