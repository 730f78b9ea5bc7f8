// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE2 build.

#include "studio/kernels/fold_fir.h"

#if defined(__i386__) || defined(__x86_64__)

#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("sse2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("sse2")
#endif

namespace corvin::studio {
namespace {

using Vec = __m128d;
using Ints = __m128i;
constexpr std::size_t kLanes = 2;

// Two integers in the low half.
Ints load(const std::int32_t* in) { return _mm_loadl_epi64(reinterpret_cast<const Ints*>(in)); }
Ints add(Ints a, Ints b) { return _mm_add_epi32(a, b); }
Vec to_double(Ints in) { return _mm_cvtepi32_pd(in); }
Vec broadcast(double value) { return _mm_set1_pd(value); }

#include "studio/kernels/fold_fir_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const FoldFirVariant fold_fir_sse2;
const FoldFirVariant fold_fir_sse2 = {{"SSE2", 10, kCpuSse2}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const FoldFirVariant fold_fir_sse2;
const FoldFirVariant fold_fir_sse2 = {};

}  // namespace corvin::studio

#endif
