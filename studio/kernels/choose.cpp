// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The builds that this library holds, from the lists that the build system writes.

#include "studio/kernels/bit_fir.h"
#include "studio/kernels/block_loop.h"
#include "studio/kernels/fold_fir.h"
#include "studio/kernels/interpolate.h"
#include "studio/kernels/path_search.h"
#include "studio/kernels/quantise.h"
#include "studio/kernels/spectral.h"

namespace corvin::studio {

std::uint32_t detected_features() {
  std::uint32_t features = 0;
#if defined(__i386__) || defined(__x86_64__)
  __builtin_cpu_init();
  if (__builtin_cpu_supports("sse2")) features |= kCpuSse2;
  if (__builtin_cpu_supports("avx2")) features |= kCpuAvx2;
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw")) {
    features |= kCpuAvx512;
  }
#endif
  return features;
}

#define CORVIN_VARIANT(name) extern const BitFirVariant name;
#include "bit_fir_variants.inc"
#undef CORVIN_VARIANT
#define CORVIN_VARIANT(name) extern const FoldFirVariant name;
#include "fold_fir_variants.inc"
#undef CORVIN_VARIANT
#define CORVIN_VARIANT(name) extern const SpectralVariant name;
#include "spectral_variants.inc"
#undef CORVIN_VARIANT
#define CORVIN_VARIANT(name) extern const InterpolateVariant name;
#include "interpolate_variants.inc"
#undef CORVIN_VARIANT
#define CORVIN_VARIANT(name) extern const QuantiseVariant name;
#include "quantise_variants.inc"
#undef CORVIN_VARIANT
#define CORVIN_VARIANT(name) extern const BlockLoopVariant name;
#include "block_loop_variants.inc"
#undef CORVIN_VARIANT
#define CORVIN_VARIANT(name) extern const PathSearchVariant name;
#include "path_search_variants.inc"
#undef CORVIN_VARIANT

#define CORVIN_VARIANT(name) &name,

const BitFirVariant& choose_bit_fir(std::uint32_t features) {
  static constexpr const BitFirVariant* kVariants[] = {
#include "bit_fir_variants.inc"
  };
  return best_variant(kVariants, features);
}

const FoldFirVariant& choose_fold_fir(std::uint32_t features) {
  static constexpr const FoldFirVariant* kVariants[] = {
#include "fold_fir_variants.inc"
  };
  return best_variant(kVariants, features);
}

const SpectralVariant& choose_spectral(std::uint32_t features) {
  static constexpr const SpectralVariant* kVariants[] = {
#include "spectral_variants.inc"
  };
  return best_variant(kVariants, features);
}

const InterpolateVariant& choose_interpolate(std::uint32_t features) {
  static constexpr const InterpolateVariant* kVariants[] = {
#include "interpolate_variants.inc"
  };
  return best_variant(kVariants, features);
}

const QuantiseVariant& choose_quantise(std::uint32_t features) {
  static constexpr const QuantiseVariant* kVariants[] = {
#include "quantise_variants.inc"
  };
  return best_variant(kVariants, features);
}

const BlockLoopVariant& choose_block_loop(std::uint32_t features) {
  static constexpr const BlockLoopVariant* kVariants[] = {
#include "block_loop_variants.inc"
  };
  return best_variant(kVariants, features);
}

const PathSearchVariant& choose_path_search(std::uint32_t features) {
  static constexpr const PathSearchVariant* kVariants[] = {
#include "path_search_variants.inc"
  };
  return best_variant(kVariants, features);
}

#undef CORVIN_VARIANT

}  // namespace corvin::studio
