// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/interpolate.h"

#include "studio/kernels/x86/begin_avx512.inc"

#include "studio/kernels/x86/doubles_avx512.inc"

#include "studio/kernels/interpolate_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const InterpolateVariant interpolate_avx512 = {kAvx512, kLanes, run};
}
