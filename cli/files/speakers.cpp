// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/speakers.h"

#include <sndfile.h>

#include <algorithm>
#include <iterator>

namespace corvin::cli {
namespace {

// In the order of the mask's bits.
constexpr struct Speaker {
  const char* name;
  int place;
} kSpeakers[] = {
    {"FL", SF_CHANNEL_MAP_LEFT},
    {"FR", SF_CHANNEL_MAP_RIGHT},
    {"FC", SF_CHANNEL_MAP_CENTER},
    {"LFE", SF_CHANNEL_MAP_LFE},
    {"BL", SF_CHANNEL_MAP_REAR_LEFT},
    {"BR", SF_CHANNEL_MAP_REAR_RIGHT},
    {"FLC", SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER},
    {"FRC", SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER},
    {"BC", SF_CHANNEL_MAP_REAR_CENTER},
    {"SL", SF_CHANNEL_MAP_SIDE_LEFT},
    {"SR", SF_CHANNEL_MAP_SIDE_RIGHT},
    {"TC", SF_CHANNEL_MAP_TOP_CENTER},
    {"TFL", SF_CHANNEL_MAP_TOP_FRONT_LEFT},
    {"TFC", SF_CHANNEL_MAP_TOP_FRONT_CENTER},
    {"TFR", SF_CHANNEL_MAP_TOP_FRONT_RIGHT},
    {"TBL", SF_CHANNEL_MAP_TOP_REAR_LEFT},
    {"TBC", SF_CHANNEL_MAP_TOP_REAR_CENTER},
    {"TBR", SF_CHANNEL_MAP_TOP_REAR_RIGHT},
};

template <class Use>
void for_each_speaker(uint32_t mask, Use use) {
  for (const Speaker& speaker : kSpeakers) {
    if ((mask & 1) != 0) use(speaker);
    mask >>= 1;
  }
}

}  // namespace

std::string speaker_names(uint32_t mask) {
  std::string names;
  for_each_speaker(mask, [&](const Speaker& speaker) {
    if (!names.empty()) names += ' ';
    names += speaker.name;
  });
  return names;
}

std::vector<int> channel_map(uint32_t mask) {
  std::vector<int> map;
  for_each_speaker(mask, [&](const Speaker& speaker) { map.push_back(speaker.place); });
  return map;
}

uint32_t speaker_mask(std::span<const int> channel_map) {
  uint32_t mask = 0;
  for (const int place : channel_map) {
    const auto found = std::find_if(std::begin(kSpeakers), std::end(kSpeakers),
                                    [&](const Speaker& one) { return one.place == place; });
    if (found == std::end(kSpeakers)) return 0;
    const uint32_t bit = 1u << (found - std::begin(kSpeakers));
    if (bit <= mask) return 0;
    mask |= bit;
  }
  return mask;
}

uint32_t dsd_speakers(uint32_t mask) {
  constexpr uint32_t kBack = 0x30;
  constexpr uint32_t kSides = 0x600;
  const bool has_sides_alone = (mask & kSides) == kSides && (mask & kBack) == 0;
  return has_sides_alone ? (mask & ~kSides) | kBack : mask;
}

}  // namespace corvin::cli
