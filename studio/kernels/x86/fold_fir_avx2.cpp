// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/fold_fir.h"

#if defined(__i386__) || defined(__x86_64__)

#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

namespace corvin::studio {
namespace {

using Vec = __m256d;
using Ints = __m128i;
constexpr std::size_t kLanes = 4;

Ints load(const std::int32_t* in) { return *reinterpret_cast<const Ints*>(in); }
Ints add(Ints a, Ints b) { return _mm_add_epi32(a, b); }
Vec to_double(Ints in) { return _mm256_cvtepi32_pd(in); }
Vec broadcast(double value) { return _mm256_set1_pd(value); }

#include "studio/kernels/fold_fir_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const FoldFirVariant fold_fir_avx2;
const FoldFirVariant fold_fir_avx2 = {{"AVX2", 20, kCpuAvx2}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const FoldFirVariant fold_fir_avx2;
const FoldFirVariant fold_fir_avx2 = {};

}  // namespace corvin::studio

#endif
