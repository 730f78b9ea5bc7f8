// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <sndfile.h>
#include <wavpack/wavpack.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <string_view>
#include <vector>

#include "cli/files/pcm_reader.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

struct Close {
  void operator()(WavpackContext* context) const { WavpackCloseFile(context); }
};
using Handle = std::unique_ptr<WavpackContext, Close>;

int format_of(WavpackContext* context) {
  if ((WavpackGetMode(context) & MODE_FLOAT) != 0) return SF_FORMAT_FLOAT;
  constexpr int kFormats[] = {SF_FORMAT_PCM_S8, SF_FORMAT_PCM_16, SF_FORMAT_PCM_24,
                              SF_FORMAT_PCM_32};
  return kFormats[std::clamp(WavpackGetBytesPerSample(context), 1, 4) - 1];
}

// As wide as it is kept: what a sample leaves empty at its lower end counts.
uint32_t bits_of(WavpackContext* context) {
  const bool is_lossless = (WavpackGetMode(context) & MODE_LOSSLESS) != 0;
  return is_lossless ? 8 * static_cast<uint32_t>(WavpackGetBytesPerSample(context)) : 0;
}

class WavPackReader : public PcmReader {
 public:
  explicit WavPackReader(Handle context) : context_(std::move(context)) {
    const auto mask = static_cast<uint32_t>(WavpackGetChannelMask(context_.get()));
    const int64_t frames = WavpackGetNumSamples64(context_.get());
    const int channels = WavpackGetNumChannels(context_.get());
    const auto bits = static_cast<uint32_t>(WavpackGetBitsPerSample(context_.get()));
    facts_ = {.rate_hz = WavpackGetSampleRate(context_.get()),
              .channels = static_cast<uint32_t>(channels),
              .sample_format = format_of(context_.get()),
              .kind = "WavPack",
              .bits = bits_of(context_.get()),
              .speakers = std::popcount(mask) == channels ? mask : 0,
              .odd_bits = bits % 8 != 0 ? bits : 0};
    if (frames >= 0) facts_.frames = static_cast<uint64_t>(frames);
    spare_bits_ = 32 - 8 * std::clamp(WavpackGetBytesPerSample(context_.get()), 1, 4);
  }

  size_t read(std::span<double> samples) override {
    const size_t frames = unpack(samples.size());
    const bool is_float = facts_.sample_format == SF_FORMAT_FLOAT;
    const double step = std::ldexp(1.0, spare_bits_ - 31);
    for (size_t i = 0; i < frames * facts_.channels; ++i)
      samples[i] =
          is_float ? static_cast<double>(std::bit_cast<float>(unpacked_[i])) : unpacked_[i] * step;
    return frames;
  }

  size_t read(std::span<int> samples) override {
    const size_t frames = unpack(samples.size());
    for (size_t i = 0; i < frames * facts_.channels; ++i)
      samples[i] = static_cast<int>(static_cast<uint32_t>(unpacked_[i]) << spare_bits_);
    return frames;
  }

  std::string damage() const override {
    const int errors = WavpackGetNumErrors(context_.get());
    if (errors == 0) return {};
    return "is damaged: " + std::to_string(errors) + " of its blocks fail their check";
  }

 private:
  size_t unpack(size_t samples) {
    const size_t frames = samples / facts_.channels;
    unpacked_.resize(frames * facts_.channels);
    return WavpackUnpackSamples(context_.get(), unpacked_.data(), static_cast<uint32_t>(frames));
  }

  Handle context_;
  int spare_bits_ = 0;
  std::vector<int32_t> unpacked_;
};

}  // namespace

std::unique_ptr<PcmReader> open_wavpack(const std::string& path) {
  char start[4] = {};
  std::ifstream(path, std::ios::binary).read(start, sizeof start);
  if (std::string_view(start, sizeof start) != "wvpk") return nullptr;
  char error[80] = {};
  Handle context(WavpackOpenFileInput(path.c_str(), error, OPEN_WVC | OPEN_NORMALIZE, 0));
  if (!context)
    throw Failure(kBadInput, path, std::string("is no readable WavPack file: ") + error);
  return std::make_unique<WavPackReader>(std::move(context));
}

}  // namespace corvin::cli
