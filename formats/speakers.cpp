// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/speakers.h"

#include <bit>
#include <cstring>
#include <iterator>

namespace corvin::formats {
namespace {

constexpr std::size_t kNameBytes = 4;

struct DsdiffName {
  std::uint32_t speaker;
  const char* name;
  const char* in_stereo;  // when the file has the two front channels alone
};

// In the order of the bits.
constexpr DsdiffName kDsdiffNames[] = {
    {kFrontLeft, "MLFT", "SLFT"},  {kFrontRight, "MRGT", "SRGT"}, {kFrontCentre, "C   ", ""},
    {kLowFrequencies, "LFE ", ""}, {kBackLeft, "LS  ", ""},       {kBackRight, "RS  ", ""},
};

// Of DSDIFF's free names those from C106 on, by the number of the bit, for what has no name of its
// own. Channels that are numbered only lie below C100.
std::string FreeName(unsigned bit) {
  return {'C', '1', static_cast<char>('0' + bit / 10), static_cast<char>('0' + bit % 10)};
}

bool Is(const std::uint8_t* name, const char* known) {
  return known[0] != '\0' && std::memcmp(name, known, kNameBytes) == 0;
}

}  // namespace

std::uint32_t MappedSpeakers(std::uint32_t speakers, std::span<const std::uint32_t> channels) {
  std::uint32_t mask = 0;
  for (const std::uint32_t channel : channels) {
    if (channel >= static_cast<std::uint32_t>(std::popcount(speakers))) return 0;
    std::uint32_t bits = speakers;
    for (std::uint32_t i = 0; i < channel; ++i) bits &= bits - 1;
    const std::uint32_t speaker = bits & (~bits + 1);
    if (speaker <= mask) return 0;
    mask |= speaker;
  }
  return mask;
}

std::uint32_t DsfTypeOf(std::uint32_t speakers, std::uint32_t channels) {
  for (std::uint32_t type = 1; type <= 7; ++type) {
    if (SpeakersOfDsfType(type) == speakers) return type;
  }
  constexpr std::uint32_t kByCount[] = {0, 1, 2, 3, 4, 6, 7};
  return kByCount[channels];
}

std::uint32_t SpeakerOfDsdiffName(const std::uint8_t* name) {
  for (const DsdiffName& known : kDsdiffNames) {
    if (Is(name, known.name) || Is(name, known.in_stereo)) return known.speaker;
  }
  for (unsigned bit = std::size(kDsdiffNames); bit < kMostSpeakers; ++bit) {
    if (Is(name, FreeName(bit).c_str())) return 1u << bit;
  }
  return 0;
}

std::string DsdiffNames(std::uint32_t speakers, std::uint32_t channels) {
  if (channels == 1) return "C000";
  std::string names;
  for (const DsdiffName& known : kDsdiffNames) {
    if ((speakers & known.speaker) == 0) continue;
    names += speakers == kStereo ? known.in_stereo : known.name;
  }
  for (unsigned bit = std::size(kDsdiffNames); bit < kMostSpeakers; ++bit) {
    if ((speakers >> bit & 1) != 0) names += FreeName(bit);
  }
  if (names.size() == kNameBytes * channels) return names;
  names.clear();
  for (std::uint32_t c = 0; c < channels; ++c) {
    const char number[] = {'C', '0', static_cast<char>('0' + c / 10),
                           static_cast<char>('0' + c % 10)};
    names.append(number, sizeof number);
  }
  return names;
}

std::uint32_t SpeakersAsWritten(ContainerKind kind, std::uint32_t speakers,
                                std::uint32_t channels) {
  switch (kind) {
    case kDsf:
      return SpeakersOfDsfType(DsfTypeOf(speakers, channels));
    case kDsdiff:
      if (channels == 1) return kFrontCentre;  // whatever it is called
      return speakers >> kMostSpeakers == 0 ? speakers : 0;
    default:
      return channels <= 2 ? UsualSpeakers(channels) : 0;
  }
}

}  // namespace corvin::formats
