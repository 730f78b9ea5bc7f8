// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/sndfile_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "cli/files/chunks.h"
#include "cli/files/speakers.h"
#include "cli/files/tag_bytes.h"

namespace corvin::cli {
namespace {

int sample_format(corvin_sample_format format) {
  constexpr int kFormats[] = {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32,
                              SF_FORMAT_FLOAT,  SF_FORMAT_DOUBLE, SF_FORMAT_PCM_24};
  return kFormats[format];
}

// RF64 shrinks to WAV at the end when it turns out short enough, but keeps a longer header that
// some readers of plain WAV do not know; so it is not the choice for every file.
bool may_outgrow_wav(const PcmWriterConfig& config, uint64_t tags) {
  if (!config.expected_frames) return true;
  const uint64_t sound = *config.expected_frames * config.channels * bytes_of(config.format);
  return sound + tags > kMostShortBytes;
}

int container(const PcmWriterConfig& config, uint64_t tags) {
  switch (config.kind) {
    case PcmKind::kRf64:
      return SF_FORMAT_RF64;
    case PcmKind::kW64:
      return SF_FORMAT_W64;
    case PcmKind::kAiff:
      return SF_FORMAT_AIFF;
    case PcmKind::kCaf:
      return SF_FORMAT_CAF | SF_ENDIAN_LITTLE;
    default:
      if (may_outgrow_wav(config, tags)) return SF_FORMAT_RF64;
      // The plain format has no place for speakers and significant bits.
      return config.channels > 2 || config.significant_bits != 0 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV;
  }
}

// libsndfile's own text wraps the system's in words that add nothing.
std::string why(int error_number) {
  return errno ? std::strerror(errno) : sf_error_number(error_number);
}

}  // namespace

SndfileWriter::SndfileWriter(const PcmWriterConfig& config)
    : config_(config),
      tags_(config.tags ? tag_bytes(config.kind, *config.tags) : std::vector<std::byte>()) {
  if (const std::string refusal = why_not_writable(config); !refusal.empty())
    fail(refusal);
  else
    begin();
}

bool SndfileWriter::write(std::span<const uint8_t> frames) {
  if (!error().empty() || !file_) return false;
  bytes_ += frames.size();
  if (config_.kind != PcmKind::kAiff) return put(frames);
  if (bytes_ + tags_.size() > kMostShortBytes)
    return fail("has reached the 4 GiB that AIFF can hold");
  const size_t width = bytes_of(config_.format);
  swapped_.assign(frames.begin(), frames.end());
  for (auto sample = swapped_.begin(); sample != swapped_.end();
       sample += static_cast<std::ptrdiff_t>(width))
    std::reverse(sample, sample + static_cast<std::ptrdiff_t>(width));
  return put(swapped_);
}

bool SndfileWriter::finish() {
  if (!error().empty() || !file_) return false;
  errno = 0;
  sf_write_sync(file_.get());
  const int pending = sf_error(file_.get());
  const int closing = sf_close(file_.release());
  if (pending != SF_ERR_NO_ERROR || closing != SF_ERR_NO_ERROR)
    return fail(why(pending != SF_ERR_NO_ERROR ? pending : closing));
  return complete() ? true : fail(std::strerror(errno));
}

// ---- Details --------------------------------------------------------------------------------

void SndfileWriter::begin() {
  SF_INFO info{};
  info.samplerate = static_cast<int>(config_.rate_hz);
  info.channels = static_cast<int>(config_.channels);
  info.format = container(config_, tags_.size()) | sample_format(config_.format);
  errno = 0;
  file_.reset(sf_open_fd(config_.descriptor, SFM_WRITE, &info, SF_FALSE));
  if (!file_) {
    fail(why(sf_error(nullptr)));
    return;
  }
  // It would state the time of day.
  sf_command(file_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  std::vector<int> map = channel_map(config_.speakers);
  const bool has_place =
      config_.channels > 2 || (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_WAVEX;
  if (has_place && map.size() == config_.channels)
    sf_command(file_.get(), SFC_SET_CHANNEL_MAP_INFO, map.data(),
               static_cast<int>(map.size() * sizeof(int)));
  if (config_.kind == PcmKind::kWav && may_outgrow_wav(config_, tags_.size()))
    sf_command(file_.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

bool SndfileWriter::put(std::span<const uint8_t> bytes) {
  errno = 0;
  const auto size = static_cast<sf_count_t>(bytes.size());
  if (sf_write_raw(file_.get(), bytes.data(), size) != size) fail(why(sf_error(file_.get())));
  return error().empty();
}

bool SndfileWriter::complete() {
  if (config_.significant_bits != 0 &&
      !state_significant_bits(config_.descriptor, config_.significant_bits))
    return false;
  // The command above does nothing for RF64.
  if (is_float(config_.format) && !hide_peaks(config_.descriptor)) return false;
  return tags_.empty() || append_to_form(config_.descriptor, tags_);
}

}  // namespace corvin::cli
