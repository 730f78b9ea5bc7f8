// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/interpolate.h"

#if defined(__i386__) || defined(__x86_64__)

#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 takes its own header's undefined vectors, which masks never let through, for mistakes.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
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

#include "studio/kernels/x86/doubles_avx512.inc"

#include "studio/kernels/interpolate_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const InterpolateVariant interpolate_avx512;
const InterpolateVariant interpolate_avx512 = {{"AVX-512", 30, kCpuAvx512}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const InterpolateVariant interpolate_avx512;
const InterpolateVariant interpolate_avx512 = {};

}  // namespace corvin::studio

#endif
