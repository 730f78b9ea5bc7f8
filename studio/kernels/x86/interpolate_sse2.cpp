// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE2 build.

#include "studio/kernels/interpolate.h"

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

#include "studio/kernels/x86/doubles_sse2.inc"

#include "studio/kernels/interpolate_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const InterpolateVariant interpolate_sse2;
const InterpolateVariant interpolate_sse2 = {{"SSE2", 10, kCpuSse2}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const InterpolateVariant interpolate_sse2;
const InterpolateVariant interpolate_sse2 = {};

}  // namespace corvin::studio

#endif
