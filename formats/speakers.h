// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Who the channels of a file are for: the bits of the mask that extensible WAV files use. The
// channels stand in the order of their bits.

#ifndef CORVIN_FORMATS_SPEAKERS_H_
#define CORVIN_FORMATS_SPEAKERS_H_

#include <cstdint>

namespace corvin::formats {

inline constexpr std::uint32_t kFrontLeft = 1;
inline constexpr std::uint32_t kFrontRight = 2;
inline constexpr std::uint32_t kFrontCentre = 4;
inline constexpr std::uint32_t kLowFrequencies = 8;
inline constexpr std::uint32_t kBackLeft = 16;
inline constexpr std::uint32_t kBackRight = 32;

inline constexpr std::uint32_t kStereo = kFrontLeft | kFrontRight;
inline constexpr std::uint32_t kQuad = kStereo | kBackLeft | kBackRight;
inline constexpr std::uint32_t kSurround51 = kQuad | kFrontCentre | kLowFrequencies;

/// The usual layout of so many channels; 0 where there is none.
constexpr std::uint32_t UsualSpeakers(std::uint32_t channels) {
  constexpr std::uint32_t kUsual[] = {
      0, kFrontCentre, kStereo, kStereo | kFrontCentre, kQuad, kQuad | kFrontCentre, kSurround51};
  return channels <= 6 ? kUsual[channels] : 0;
}

/// The layouts of DSF's channel types 1 to 7, by type; 0 for all others.
constexpr std::uint32_t SpeakersOfDsfType(std::uint32_t type) {
  constexpr std::uint32_t kTypes[] = {0,
                                      kFrontCentre,
                                      kStereo,
                                      kStereo | kFrontCentre,
                                      kQuad,
                                      kStereo | kFrontCentre | kLowFrequencies,
                                      kQuad | kFrontCentre,
                                      kSurround51};
  return type <= 7 ? kTypes[type] : 0;
}

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SPEAKERS_H_
