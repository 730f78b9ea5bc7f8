// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/dsd_source.h"

#include <sys/stat.h>

#include <bit>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <limits>

namespace corvin::cli {

std::optional<Failure> read_source(const std::string& path, DsdSource& source) {
  const auto bad = [](std::string why) { return Failure{kBadInput, std::move(why)}; };
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return bad(std::strerror(errno));
  // A pipe would be opened twice, and opening one may wait for ever.
  if (!S_ISREG(status.st_mode)) return bad("is not a regular file");
  source.file_bytes = static_cast<uint64_t>(status.st_size);
  source.info = {};
  errno = 0;
  if (DSDInfo(path.c_str(), &source.info) != 0)
    return bad(errno ? std::strerror(errno) : "cannot be opened");
  source.is_of_unknown_kind = source.info.format == 0;
  if (source.is_of_unknown_kind) return bad("is no DSDIFF, DSF or 1bit file");
  if (source.info.channels == 0) return bad("is damaged: its headers declare no channels");
  if (source.info.samplingFrequency == 0) return bad("is damaged: its headers declare no rate");
  // The library divides before it multiplies, which falls short where 8 is no multiple.
  if (source.info.format == 3 && 8 % source.info.channels != 0 && source.info.channels < 8)
    source.info.sampleCount =
        source.info.sampleCount / (8 / source.info.channels) * 8 / source.info.channels;
  return {};
}

uint64_t DsdSource::sound_bytes() const {
  const uint64_t per_channel = info.sampleCount / 8 + (info.sampleCount % 8 != 0);
  constexpr uint64_t kMax = std::numeric_limits<uint64_t>::max();
  return per_channel > kMax / info.channels ? kMax : per_channel * info.channels;
}

const char* kind_name(uint32_t kind) {
  constexpr const char* kNames[] = {"unknown", "DSDIFF", "DSF", "1bit"};
  return kNames[kind <= 3 ? kind : 0];
}

bool is_48k_family(uint32_t rate_hz) { return rate_hz % 44100 != 0 && rate_hz % 48000 == 0; }

std::string rate_name(uint32_t rate_hz) {
  const uint32_t base_hz = is_48k_family(rate_hz) ? 48000 : 44100;
  const uint32_t multiple = rate_hz % base_hz == 0 ? rate_hz / base_hz : 0;
  const std::string hz = std::to_string(rate_hz) + " Hz";
  if (multiple < 64 || !std::has_single_bit(multiple)) return hz;
  return "DSD" + std::to_string(multiple) + " (" + hz + ")";
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

}  // namespace corvin::cli
