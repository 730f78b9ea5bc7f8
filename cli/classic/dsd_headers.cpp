// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/dsd_headers.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "cli/words/failure.h"

namespace corvin::cli {

std::optional<DsdHeaders> read_dsd_headers(const std::string& path) {
  const auto bad = [&](const std::string& why) { return Failure(kBadInput, path, why); };
  struct stat status;
  if (stat(path.c_str(), &status) != 0) throw bad(std::strerror(errno));
  // A pipe would be opened twice, and opening one may wait for ever.
  if (!S_ISREG(status.st_mode)) throw bad("is not a regular file");
  DsdHeaders headers{.path = path, .file_bytes = static_cast<uint64_t>(status.st_size)};
  DSD_INFO& info = headers.info;
  errno = 0;
  if (DSDInfo(path.c_str(), &info) != 0)
    throw bad(errno ? std::strerror(errno) : "cannot be opened");
  if (info.format == 0) return {};
  if (info.channels == 0) throw bad("is damaged: its headers declare no channels");
  if (info.samplingFrequency == 0) throw bad("is damaged: its headers declare no rate");
  // The library divides before it multiplies, which falls short where 8 is no multiple.
  if (info.format == CORVIN_ONE_BIT && 8 % info.channels != 0 && info.channels < 8)
    info.sampleCount = info.sampleCount / (8 / info.channels) * 8 / info.channels;
  return headers;
}

uint64_t DsdHeaders::sound_bytes() const {
  const uint64_t per_channel = info.sampleCount / 8 + (info.sampleCount % 8 != 0);
  constexpr uint64_t kMax = std::numeric_limits<uint64_t>::max();
  return per_channel > kMax / info.channels ? kMax : per_channel * info.channels;
}

}  // namespace corvin::cli
