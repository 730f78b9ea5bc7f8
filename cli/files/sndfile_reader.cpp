// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <sndfile.h>

#include <vector>

#include "cli/files/pcm_reader.h"
#include "cli/files/speakers.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

// More than any file holds; libsndfile states lengths beyond it when it does not know.
constexpr sf_count_t kMaxFrames = sf_count_t{1} << 36;

struct Close {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using Handle = std::unique_ptr<SNDFILE, Close>;

uint32_t speakers_of(SNDFILE* file, int channels) {
  std::vector<int> map(static_cast<size_t>(channels));
  if (sf_command(file, SFC_GET_CHANNEL_MAP_INFO, map.data(),
                 static_cast<int>(map.size() * sizeof map[0])) == SF_FALSE)
    return 0;
  return speaker_mask(map);
}

const char* kind_of(int format) {
  switch (format & SF_FORMAT_TYPEMASK) {
    case SF_FORMAT_WAV:
    case SF_FORMAT_WAVEX:
      return "WAV";
    case SF_FORMAT_RF64:
      return "RF64";
    case SF_FORMAT_W64:
      return "W64";
    case SF_FORMAT_AIFF:
      return "AIFF";
    case SF_FORMAT_CAF:
      return "CAF";
    case SF_FORMAT_AU:
      return "AU";
    case SF_FORMAT_OGG:
      return "Ogg";
    case SF_FORMAT_MPEG:
      return "MPEG";
    default:
      return "PCM of another kind";
  }
}

uint32_t bits_of(int format) {
  switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
      return 8;
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_ALAC_16:
      return 16;
    case SF_FORMAT_ALAC_20:
      return 20;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_ALAC_24:
      return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
    case SF_FORMAT_FLOAT:
      return 32;
    case SF_FORMAT_DOUBLE:
      return 64;
    default:
      return 0;
  }
}

class SndfileReader : public PcmReader {
 public:
  SndfileReader(Handle file, const SF_INFO& info) : file_(std::move(file)) {
    if (info.channels < 1 || info.samplerate < 1) return;
    facts_ = {.rate_hz = static_cast<uint32_t>(info.samplerate),
              .channels = static_cast<uint32_t>(info.channels),
              .sample_format = info.format & SF_FORMAT_SUBMASK,
              .kind = kind_of(info.format),
              .bits = bits_of(info.format),
              .speakers = speakers_of(file_.get(), info.channels)};
    // Some readers leave the length of a stream 0.
    if (info.frames > 0 && info.frames < kMaxFrames)
      facts_.frames = static_cast<uint64_t>(info.frames);
  }

  size_t read(std::span<double> samples) override {
    const auto frames = static_cast<sf_count_t>(samples.size() / facts_.channels);
    return seen(sf_readf_double(file_.get(), samples.data(), frames), frames);
  }

  size_t read(std::span<int> samples) override {
    const auto frames = static_cast<sf_count_t>(samples.size() / facts_.channels);
    return seen(sf_readf_int(file_.get(), samples.data(), frames), frames);
  }

  std::string damage() const override { return damage_; }

  std::string text(int kind) const override {
    const char* text = sf_get_string(file_.get(), kind);
    return text ? text : "";
  }

 private:
  size_t seen(sf_count_t got, sf_count_t wanted) {
    if (got < wanted && sf_error(file_.get()) != SF_ERR_NO_ERROR && damage_.empty())
      damage_ = std::string("is damaged: ") + sf_strerror(file_.get());
    return static_cast<size_t>(got);
  }

  Handle file_;
  std::string damage_;
};

}  // namespace

std::unique_ptr<PcmReader> open_sndfile(const std::string& path) {
  SF_INFO info{};
  Handle file(sf_open(path.c_str(), SFM_READ, &info));
  if (!file) {
    if (sf_error(nullptr) == SF_ERR_MALFORMED_FILE ||
        sf_error(nullptr) > SF_ERR_UNSUPPORTED_ENCODING)
      throw Failure(kBadInput, path,
                    std::string("is no readable PCM file: ") + sf_strerror(nullptr));
    return nullptr;
  }
  return std::make_unique<SndfileReader>(std::move(file), info);
}

}  // namespace corvin::cli
