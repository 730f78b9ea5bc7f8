// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference: one transform at a time.

#include "studio/kernels/spectral.h"

namespace corvin::studio {
namespace {

using Vec = double;
constexpr unsigned kLanes = 1;

inline Vec broadcast(double value) { return value; }
inline std::int32_t load(const std::int32_t* in) { return *in; }
inline Vec to_double(std::int32_t in) { return in; }
inline void store(double* out, Vec value) { *out = value; }
inline void transpose(Vec (&)[kLanes]) {}

#include "studio/kernels/spectral_body.inc"

}  // namespace

const SpectralVariant spectral_portable = {kPortable, kLanes, to_bins, from_bins, run};

}  // namespace corvin::studio
