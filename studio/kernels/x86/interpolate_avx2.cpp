// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/interpolate.h"

#include "studio/kernels/x86/begin_avx2.inc"

#include "studio/kernels/x86/doubles_avx2.inc"

#include "studio/kernels/interpolate_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const InterpolateVariant interpolate_avx2 = {kAvx2, kLanes, run};
}
