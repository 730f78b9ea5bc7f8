// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build: the AVX2 build's vectors, but in 32 registers, where all paths fit.

#include "studio/kernels/path_search.h"

#include "studio/kernels/x86/begin_avx512.inc"

#include "studio/kernels/x86/search_lanes.inc"

inline Ints select(Ints mask, Ints yes, Ints no) {
  return {_mm256_ternarylogic_epi32(mask.v, yes.v, no.v, 0xca)};
}

#include "studio/kernels/path_search_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const PathSearchVariant path_search_avx512 = {kAvx512, run};
}
