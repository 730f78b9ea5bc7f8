// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_source.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <iterator>

namespace corvin::cli {
namespace {

// More than any file holds; libsndfile states lengths beyond it when it does not know.
constexpr sf_count_t kMaxFrames = sf_count_t{1} << 36;

// Bits of a file's integers; 0 when its samples are no integers.
int integer_bits(int format) {
  switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_DPCM_8:
      return 8;
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
    case SF_FORMAT_DPCM_16:
    case SF_FORMAT_DWVW_12:
    case SF_FORMAT_DWVW_16:
    case SF_FORMAT_ALAC_16:
      return 16;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_DWVW_24:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24:
      return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
      return 32;
    default:
      return 0;
  }
}

}  // namespace

std::optional<Failure> PcmSource::open(const std::string& path) {
  const auto bad = [](std::string why) { return Failure{kBadInput, std::move(why)}; };
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return bad(std::strerror(errno));
  if (!S_ISREG(status.st_mode)) return bad("is not a regular file");
  info_ = {};
  clipped_ = 0;
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  if (!file_) return bad("is neither a DSD file nor PCM in a file that libsndfile reads");
  if (info_.channels < 1 || info_.samplerate < 1) return bad("is damaged: it declares no sound");
  bits_ = integer_bits(info_.format);
  is_integer_ = bits_ != 0;
  if (!is_integer_) bits_ = 24;
  return {};
}

std::optional<uint64_t> PcmSource::declared_frames() const {
  // Some readers leave the length of a stream 0.
  if (info_.frames <= 0 || info_.frames >= kMaxFrames) return {};
  return static_cast<uint64_t>(info_.frames);
}

uint64_t PcmSource::count_frames() {
  std::vector<uint8_t> buffer(std::max<size_t>(1 << 16, bytes_per_frame()));
  uint64_t frames = 0;
  while (const size_t bytes = read(buffer)) frames += bytes / bytes_per_frame();
  return frames;
}

uint32_t PcmSource::speakers() const {
  // libsndfile's names for the places that the library has bits for, in the order of the bits.
  constexpr int kPlaces[] = {SF_CHANNEL_MAP_LEFT,      SF_CHANNEL_MAP_RIGHT,
                             SF_CHANNEL_MAP_CENTER,    SF_CHANNEL_MAP_LFE,
                             SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT};
  std::vector<int> map(static_cast<size_t>(channels()));
  if (sf_command(file_.get(), SFC_GET_CHANNEL_MAP_INFO, map.data(),
                 static_cast<int>(map.size() * sizeof map[0])) == SF_FALSE)
    return 0;
  uint32_t mask = 0;
  for (const int place : map) {
    const auto found = std::find(std::begin(kPlaces), std::end(kPlaces), place);
    if (found == std::end(kPlaces)) return 0;
    const uint32_t bit = 1u << (found - std::begin(kPlaces));
    if (bit <= mask) return 0;  // another order
    mask |= bit;
  }
  return mask;
}

size_t PcmSource::read(std::span<double> samples) {
  const auto frames = static_cast<sf_count_t>(samples.size() / static_cast<size_t>(channels()));
  return static_cast<size_t>(sf_readf_double(file_.get(), samples.data(), frames));
}

size_t PcmSource::read(std::span<uint8_t> pcm) {
  const size_t wanted = pcm.size() / bytes_per_frame();
  const size_t samples = wanted * static_cast<size_t>(channels());
  const auto frames = static_cast<sf_count_t>(wanted);
  const int bytes = bits_ / 8;
  uint8_t* out = pcm.data();
  const auto put = [&](int32_t aligned) {  // the sample in the top bits
    for (int i = 0; i < bytes; ++i)
      *out++ = static_cast<uint8_t>(static_cast<uint32_t>(aligned) >> (24 - 8 * i));
  };
  if (is_integer_) {
    integers_.resize(samples);
    const sf_count_t got = sf_readf_int(file_.get(), integers_.data(), frames);
    for (sf_count_t i = 0; i < got * channels(); ++i) put(integers_[static_cast<size_t>(i)]);
  } else {
    // libsndfile's own way from floating point to integers scales by the file's peak.
    reals_.resize(samples);
    const sf_count_t got = sf_readf_double(file_.get(), reals_.data(), frames);
    const double full_scale = std::ldexp(1.0, bits_ - 1);
    for (sf_count_t i = 0; i < got * channels(); ++i) {
      double value = reals_[static_cast<size_t>(i)];
      if (std::isnan(value)) value = 0;
      if (std::abs(value) > 1) ++clipped_;
      value = std::clamp(std::round(value * full_scale), -full_scale, full_scale - 1);
      put(static_cast<int32_t>(std::ldexp(value, 32 - bits_)));
    }
  }
  return static_cast<size_t>(out - pcm.data());
}

std::string PcmSource::text(int kind) const {
  const char* text = sf_get_string(file_.get(), kind);
  return text ? text : "";
}

}  // namespace corvin::cli
