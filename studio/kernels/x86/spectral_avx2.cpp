// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/spectral.h"

#include "studio/kernels/x86/begin_avx2.inc"

#include "studio/kernels/x86/doubles_avx2.inc"

#include "studio/kernels/spectral_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const SpectralVariant spectral_avx2 = {kAvx2, kLanes, to_bins, from_bins, run};
}
