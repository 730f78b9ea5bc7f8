// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sizes of a span transform for little latency: spans not much longer than what they overlap by,
// instead of several times as long.

#ifndef CORVIN_STUDIO_PLAN_SHORT_TRANSFORM_H_
#define CORVIN_STUDIO_PLAN_SHORT_TRANSFORM_H_

#include <cstddef>

namespace corvin::studio {

struct TransformSizes {
  std::size_t forward, inverse;
};

/// The sizes that take the least work for each new row among those whose hop, the new rows of a
/// span, is not too long.
/// @param in, out   the ratio of the rates in lowest terms
/// @param overlap   rows at the input's rate that neighbouring spans share
/// @param grain     the hop is a multiple of it, and of `in`
/// @param most_hop  the longest, unless no multiple is that short
TransformSizes short_transform(std::size_t in, std::size_t out, std::size_t overlap,
                               std::size_t grain, std::size_t most_hop);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_SHORT_TRANSFORM_H_
