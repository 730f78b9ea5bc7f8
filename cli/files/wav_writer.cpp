// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/wav_writer.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include "cli/files/speakers.h"

namespace corvin::cli {
namespace {

// Room for the headers below the limit of the 32-bit sizes.
constexpr uint64_t kMaxWavBytes = 0xffffffff - 4096;

int sndfile_format(corvin_sample_format format) {
  switch (format) {
    case CORVIN_S16:
      return SF_FORMAT_PCM_16;
    case CORVIN_S24:
      return SF_FORMAT_PCM_24;
    case CORVIN_S32:
      return SF_FORMAT_PCM_32;
    default:
      return SF_FORMAT_FLOAT;
  }
}

// libsndfile's own text wraps the system's in words that add nothing.
std::string why(int error_number) {
  return errno ? std::strerror(errno) : sf_error_number(error_number);
}

}  // namespace

WavWriter::WavWriter(const Config& config) {
  // RF64 shrinks to WAV at the end when it turns out short enough, but keeps a longer header that
  // some readers of plain WAV do not know; so it is not the choice for every file.
  const bool is_long = config.expected_bytes > kMaxWavBytes;
  SF_INFO info{};
  info.samplerate = config.rate_hz;
  info.channels = config.channels;
  const int container = is_long               ? SF_FORMAT_RF64
                        : config.channels > 2 ? SF_FORMAT_WAVEX
                                              : SF_FORMAT_WAV;
  info.format = container | sndfile_format(config.format);
  errno = 0;
  file_.reset(sf_open_fd(config.descriptor, SFM_WRITE, &info, SF_FALSE));
  if (!file_) {
    error_ = why(sf_error(nullptr));
    return;
  }
  std::vector<int> map = channel_map(config.speakers);
  if (config.channels > 2 && map.size() == static_cast<size_t>(config.channels))
    sf_command(file_.get(), SFC_SET_CHANNEL_MAP_INFO, map.data(),
               static_cast<int>(map.size() * sizeof(int)));
  if (is_long) sf_command(file_.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

bool WavWriter::write(std::span<const uint8_t> frames) {
  if (!file_ || !error_.empty()) return false;
  errno = 0;
  const auto size = static_cast<sf_count_t>(frames.size());
  if (sf_write_raw(file_.get(), frames.data(), size) != size) error_ = why(sf_error(file_.get()));
  return error_.empty();
}

bool WavWriter::finish() {
  if (!file_ || !error_.empty()) return false;
  errno = 0;
  sf_write_sync(file_.get());
  const int pending = sf_error(file_.get());
  const int closing = sf_close(file_.release());
  if (pending != SF_ERR_NO_ERROR || closing != SF_ERR_NO_ERROR)
    error_ = why(pending != SF_ERR_NO_ERROR ? pending : closing);
  return error_.empty();
}

}  // namespace corvin::cli
