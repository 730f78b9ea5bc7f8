// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Who the channels of a file are for: the bits of the mask that extensible WAV files use, and what
// DSF and DSDIFF call them. The channels stand in the order of their bits.

#ifndef CORVIN_FORMATS_SPEAKERS_H_
#define CORVIN_FORMATS_SPEAKERS_H_

#include <cstdint>
#include <span>
#include <string>

#include "formats/container.h"

namespace corvin::formats {

inline constexpr std::uint32_t kFrontLeft = 1;
inline constexpr std::uint32_t kFrontRight = 2;
inline constexpr std::uint32_t kFrontCentre = 4;
inline constexpr std::uint32_t kLowFrequencies = 8;
inline constexpr std::uint32_t kBackLeft = 16;
inline constexpr std::uint32_t kBackRight = 32;

/// Those that a mask has bits for, from front left to the last one above.
inline constexpr unsigned kMostSpeakers = 18;

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

/// The mask of channels that come from those of `speakers` with these numbers; 0 where they do not
/// stand in the order of the bits, or one has no speaker.
std::uint32_t MappedSpeakers(std::uint32_t speakers, std::span<const std::uint32_t> channels);

/// DSF's type of a layout; for one that it does not know, that of so many channels, at most 6.
std::uint32_t DsfTypeOf(std::uint32_t speakers, std::uint32_t channels);

/// The speaker that a DSDIFF file calls by the four characters; 0 when it is none.
std::uint32_t SpeakerOfDsdiffName(const std::uint8_t* name);

/// DSDIFF's names of all channels, in a row; numbers where the layout does not fit their count.
std::string DsdiffNames(std::uint32_t speakers, std::uint32_t channels);

/// What a file of that kind says of its speakers, and is read as, when it is written with a mask of
/// as many channels; 0: nothing. A kind that has no way to say nothing says something else.
std::uint32_t SpeakersAsWritten(ContainerKind kind, std::uint32_t speakers, std::uint32_t channels);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SPEAKERS_H_
