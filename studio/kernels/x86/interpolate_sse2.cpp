// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE2 build.

#include "studio/kernels/interpolate.h"

#include "studio/kernels/x86/begin_sse2.inc"

#include "studio/kernels/x86/doubles_sse2.inc"

#include "studio/kernels/interpolate_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const InterpolateVariant interpolate_sse2 = {kSse2, kLanes, run};
}
