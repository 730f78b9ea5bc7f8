// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The modulator's loop with a search: several paths of bits are followed at once, each a lane with
// a loop of its own, and the one with the least cost sum (v - y)^2 wins in the end.
//
// Every path prefers the bit nearest to its y. Per bit, the cheapest of the other children replaces
// the dearest of the preferred ones if that lowers the cost, and nothing else is ever sorted; a
// full search of the same width is no better, since this keeps the paths diverse. Of each path only
// the last bits stay open: what the best one did 480 to 511 bits ago is written, and paths that did
// something else are given up.
//
// The first state is an integer, so that no charge is ever lost; everything else is float. Lanes do
// the same operations in the same order in every build, without fused ones: the same bits.

#ifndef CORVIN_STUDIO_KERNELS_PATH_SEARCH_H_
#define CORVIN_STUDIO_KERNELS_PATH_SEARCH_H_

#include <cstddef>
#include <cstdint>

#include "studio/kernels/builds.h"

namespace corvin::studio {

inline constexpr int kSearchLanes = 8;
inline constexpr int kSearchOrder = 10;
inline constexpr int kSearchWords = 16;         ///< words of 32 bits that a path remembers
inline constexpr double kChargeUnit = 0x1p-26;  ///< of the first state and the input

struct PathSearchShape {
  unsigned paths = 8;               ///< 8 (one channel fills the lanes) or 4 (two channels do)
  float weight[kSearchOrder] = {};  ///< of the states; the first per kChargeUnit
  float feedback[kSearchOrder / 2] = {};  ///< of the resonators; the first in units of charge
  float first_two = 0;                    ///< weight of the first two states together
  float bound[kSearchOrder] = {};         ///< of |state| in lock; the first in units of charge
};

struct PathSearchState {
  alignas(64) std::int32_t charge[kSearchLanes] = {};  ///< a_1
  float x[kSearchOrder - 1][kSearchLanes] = {};        ///< b_1, a_2, b_2, ...
  float y[kSearchLanes] = {};                          ///< quantiser's input at the next bit
  float cost[kSearchLanes] = {};
  std::uint32_t bits[kSearchLanes] = {};                 ///< the last 32
  std::uint32_t origin[kSearchLanes] = {};               ///< lane at the word's begin
  std::uint32_t words[kSearchWords][kSearchLanes] = {};  ///< complete words, a ring
  std::uint32_t origins[kSearchWords][kSearchLanes] = {};
  std::uint32_t next_word = 0;      ///< the ring's oldest
  std::uint64_t overloads[2] = {};  ///< per channel
};

/// A path that is given up costs as much as this.
inline constexpr float kGivenUp = 1e4f;

/// Runs the loops over words of 32 bits.
/// @param states  states[1] with four paths, states[2] with eight
/// @param in      in[2]: values at 32 x words + 1 bits in kChargeUnit, |value| <= 0.9; the last is
///                read ahead. With eight paths in[1] may be null: one channel alone
/// @param out     out[2]: 4 x words bytes, the bits of kSearchWords - 1 words ago, the earliest in
///                the most significant place
using PathSearch = void (*)(const PathSearchShape& shape, PathSearchState* states,
                            const std::int32_t* const* in, std::size_t words,
                            std::uint8_t* const* out);

struct PathSearchVariant {
  InstructionSet set;
  PathSearch run = nullptr;
};

template <>
std::span<const PathSearchVariant* const> builds<PathSearchVariant>();

/// The state before a stream whose first value is in[lane group][0].
inline PathSearchState path_search_start(unsigned paths, const std::int32_t* const* in) {
  PathSearchState state;
  for (unsigned lane = 0; lane < kSearchLanes; ++lane) {
    state.y[lane] = static_cast<float>(in[lane / paths][0]) * static_cast<float>(kChargeUnit);
    state.cost[lane] = lane % paths == 0 ? 0 : kGivenUp;
    state.origin[lane] = lane;
  }
  return state;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_PATH_SEARCH_H_
