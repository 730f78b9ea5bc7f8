// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sizes of a span transform for little latency: spans about twice as long as what they overlap
// by, instead of several times.

#ifndef CORVIN_STUDIO_PLAN_SHORT_TRANSFORM_H_
#define CORVIN_STUDIO_PLAN_SHORT_TRANSFORM_H_

#include <cstddef>

namespace corvin::studio {

struct TransformSizes {
  std::size_t forward, inverse;
};

/// The sizes that take the least work for each new row among those whose hop, the new rows of a
/// span, is at most three quarters of the overlap, or 512 where that is less: the two spans of an
/// item then wait for one and a half times what the filter spreads over, and cost about twice as much
/// as the longest.
/// @param in, out   the ratio of the rates in lowest terms
/// @param overlap   rows at the input's rate that neighbouring spans share
/// @param grain     the hop is a multiple of it, and of `in`
TransformSizes short_transform(std::size_t in, std::size_t out, std::size_t overlap,
                               std::size_t grain);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_SHORT_TRANSFORM_H_
