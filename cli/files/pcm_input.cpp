// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_input.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "cli/files/speakers.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

// More than any file holds; libsndfile states lengths beyond it when it does not know.
constexpr sf_count_t kMaxFrames = sf_count_t{1} << 36;

}  // namespace

PcmInput::PcmInput(const std::string& path) : path_(path) {
  const auto bad = [&](const std::string& why) { return Failure(kBadInput, path, why); };
  struct stat status;
  if (stat(path.c_str(), &status) != 0) throw bad(std::strerror(errno));
  if (!S_ISREG(status.st_mode)) throw bad("is not a regular file");
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  if (!file_) throw bad("is neither a DSD file nor PCM in a file that libsndfile reads");
  if (info_.channels < 1 || info_.samplerate < 1) throw bad("is damaged: it declares no sound");
}

std::optional<uint64_t> PcmInput::declared_frames() const {
  // Some readers leave the length of a stream 0.
  if (info_.frames <= 0 || info_.frames >= kMaxFrames) return {};
  return static_cast<uint64_t>(info_.frames);
}

uint32_t PcmInput::speakers() const {
  std::vector<int> map(channels());
  if (sf_command(file_.get(), SFC_GET_CHANNEL_MAP_INFO, map.data(),
                 static_cast<int>(map.size() * sizeof map[0])) == SF_FALSE)
    return 0;
  return speaker_mask(map);
}

size_t PcmInput::read(std::span<double> samples) {
  const auto frames = static_cast<sf_count_t>(samples.size() / channels());
  return static_cast<size_t>(sf_readf_double(file_.get(), samples.data(), frames));
}

size_t PcmInput::read(std::span<int> samples) {
  const auto frames = static_cast<sf_count_t>(samples.size() / channels());
  return static_cast<size_t>(sf_readf_int(file_.get(), samples.data(), frames));
}

std::string PcmInput::text(int kind) const {
  const char* text = sf_get_string(file_.get(), kind);
  return text ? text : "";
}

}  // namespace corvin::cli
