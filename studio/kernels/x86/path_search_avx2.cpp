// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/path_search.h"

#include "studio/kernels/x86/begin_avx2.inc"

#include "studio/kernels/x86/search_lanes.inc"

inline Ints select(Ints mask, Ints yes, Ints no) {
  return {_mm256_blendv_epi8(no.v, yes.v, mask.v)};
}

#include "studio/kernels/path_search_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const PathSearchVariant path_search_avx2 = {kAvx2, run};
}
