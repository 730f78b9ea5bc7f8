// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the decoder and the encoder have in common: the ranges of their settings and DSD silence.

#ifndef CORVIN_STUDIO_STREAM_STREAM_LIMITS_H_
#define CORVIN_STUDIO_STREAM_STREAM_LIMITS_H_

#include <cstddef>
#include <cstdint>

namespace corvin::studio {

inline constexpr std::uint32_t kMostChannels = 64;
inline constexpr std::uint32_t kMostThreads = 64;
inline constexpr std::uint32_t kLargestBlock = 1u << 20;
inline constexpr double kLeastGainDb = -120;
inline constexpr double kMostGainDb = 60;

/// Items that the widest build of a kernel runs side by side.
inline constexpr std::size_t kWidestVector = 8;

/// No sound: as many ones as zeros in every byte, and its noise far above the audio band. Earliest
/// sample in the most significant bit.
inline constexpr std::uint8_t kIdlePattern = 0x69;
inline constexpr std::uint8_t kIdlePatternLsbFirst = 0x96;

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_STREAM_LIMITS_H_
