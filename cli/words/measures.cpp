// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/measures.h"

#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdio>

namespace corvin::cli {

bool is_48k_family(uint32_t rate_hz) { return rate_hz % 44100 != 0 && rate_hz % 48000 == 0; }

uint32_t base_rate_hz(uint32_t rate_hz) { return is_48k_family(rate_hz) ? 48000 : 44100; }

bool is_octave_of_base(uint32_t rate_hz, uint32_t least, uint32_t most) {
  for (uint32_t times = least; times <= most; times *= 2)
    if (rate_hz == times * 44100 || rate_hz == times * 48000) return true;
  return false;
}

uint32_t default_pcm_rate_hz(uint32_t dsd_rate_hz) {
  const uint32_t base_hz = base_rate_hz(dsd_rate_hz);
  return dsd_rate_hz > 64 * base_hz ? 4 * base_hz : 2 * base_hz;
}

uint32_t engine_rate_hz(uint32_t rate_hz) {
  for (uint32_t times = 1; times <= 16; times *= 2)
    for (const uint32_t base_hz : {44100, 48000})
      if (times * base_hz >= rate_hz) return times * base_hz;
  return 16 * 48000;
}

std::string hz_text(double hz) { return std::to_string(std::lround(hz)) + " Hz"; }

std::string rate_name(uint32_t rate_hz) {
  const uint32_t base_hz = base_rate_hz(rate_hz);
  const uint32_t multiple = rate_hz % base_hz == 0 ? rate_hz / base_hz : 0;
  const std::string hz = std::to_string(rate_hz) + " Hz";
  if (multiple < 64 || !std::has_single_bit(multiple)) return hz;
  return "DSD" + std::to_string(multiple) + " (" + hz + ")";
}

std::string counted(uint64_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string duration_text(uint64_t samples, uint32_t rate_hz) {
  const uint64_t seconds = samples / rate_hz;
  const auto milliseconds = static_cast<unsigned>(samples % rate_hz * 1000 / rate_hz);
  char text[64];
  std::snprintf(text, sizeof text, "%" PRIu64 ":%02u:%02u.%03u", seconds / 3600,
                static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60),
                milliseconds);
  return text;
}

std::string dbfs_text(double db) {
  char text[40];
  std::snprintf(text, sizeof text, "%.2f dBFS", db);
  return text;
}

std::string level_text(double peak) {
  return peak == 0 ? "silent" : "peak " + dbfs_text(20 * std::log10(peak));
}

}  // namespace corvin::cli
