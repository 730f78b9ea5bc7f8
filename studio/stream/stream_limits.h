// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ranges that the settings of decoder and encoder have in common.

#ifndef CORVIN_STUDIO_STREAM_STREAM_LIMITS_H_
#define CORVIN_STUDIO_STREAM_STREAM_LIMITS_H_

#include <cstdint>

namespace corvin::studio {

inline constexpr std::uint32_t kMostChannels = 64;
inline constexpr std::uint32_t kMostThreads = 64;
inline constexpr std::uint32_t kLargestBlock = 1u << 20;
inline constexpr std::uint64_t kLastPlace = std::uint64_t{1} << 60;  // in a whole; bits fit 64
inline constexpr double kLeastGainDb = -120;
inline constexpr double kMostGainDb = 60;

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_STREAM_LIMITS_H_
