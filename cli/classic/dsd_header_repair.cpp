// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/dsd_header_repair.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string>

namespace corvin::cli {
namespace {

bool put(int descriptor, off_t offset, const std::string& bytes) {
  return pwrite(descriptor, bytes.data(), bytes.size(), offset) ==
         static_cast<ssize_t>(bytes.size());
}

std::string big_endian(uint64_t number, int width) {
  std::string bytes;
  for (int i = width - 1; i >= 0; --i) bytes += static_cast<char>(number >> 8 * i);
  return bytes;
}

// The order of the speakers is that of WAV: front left and right, centre, low frequencies, back.
bool repair_dsf(int descriptor, uint32_t channels) {
  constexpr char kChannelTypes[] = {0, 1, 2, 3, 4, 6, 7};
  const auto field = [](uint32_t number) {
    return std::string{static_cast<char>(number), 0, 0, 0};
  };
  return put(descriptor, 48,
             field(static_cast<uint32_t>(kChannelTypes[channels])) + field(channels));
}

std::string channel_names(uint32_t channels) {
  if (channels == 5) return "MLFTMRGTC   LS  RS  ";
  if (channels == 6) return "MLFTMRGTC   LFE LS  RS  ";
  if (channels == 1) return "C000";
  std::string names = "SLFTSRGT";
  for (uint32_t c = 2; c < channels; ++c) names += "C00" + std::to_string(c);
  return names;
}

// From three channels up the library leaves out one channel's name. A shorter name of the
// compression makes up for its four bytes, so that nothing behind has to move.
bool repair_dsdiff(int descriptor, uint32_t channels) {
  const std::string names = channel_names(channels);
  if (channels == 1) {
    return put(descriptor, 36, big_endian(90, 8)) && put(descriptor, 68, big_endian(6, 8)) &&
           put(descriptor, 78, names);
  }
  struct stat status;
  if (fstat(descriptor, &status) != 0) return false;
  const std::string compression = "CMPR" + big_endian(16, 8) + "DSD \x0anot packed" + '\0';
  return put(descriptor, 4, big_endian(static_cast<uint64_t>(status.st_size) - 12, 8)) &&
         put(descriptor, 36, big_endian(82 + names.size(), 8)) &&
         put(descriptor, 68, big_endian(2 + names.size(), 8)) &&
         put(descriptor, 78, names + compression);
}

}  // namespace

bool repair_header(int descriptor, corvin_container container, uint32_t channels) {
  if (channels == 2 || container == CORVIN_ONE_BIT)
    return true;  // "1bit" headers are right for all
  return container == CORVIN_DSF ? repair_dsf(descriptor, channels)
                                 : repair_dsdiff(descriptor, channels);
}

}  // namespace corvin::cli
