// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/frame_source.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kBytesAtOnce = 1 << 13;  // of a channel
constexpr uint32_t kLeastRateHz = 1000;
constexpr uint32_t kMostRateHz = 2822400;

// Above DSD128 the noise of a modulator begins beyond what eight times the base rate shows.
uint32_t spectrum_rate_hz(uint32_t dsd_rate_hz) {
  const uint32_t base_hz = base_rate_hz(dsd_rate_hz);
  return (dsd_rate_hz > 128 * base_hz ? 16 : 8) * base_hz;
}

class DsdFrames : public FrameSource {
 public:
  DsdFrames(const std::string& path, const Stretch& stretch, uint32_t rate_hz, bool full_band)
      : bits_(path, stretch) {
    DecoderSettings settings;
    settings.dsd_rate = bits_.input().info().dsd_rate;
    settings.pcm_rate = rate_hz;
    settings.channels = bits_.channels();
    settings.format = CORVIN_F64;
    settings.length = bits_.samples();
    if (full_band) settings.stop_hz = rate_hz / 2.0;
    // A length of 0 would be all that comes, which is nothing.
    if (settings.length > 0) decoder_.emplace(settings);
  }

  size_t read(double* frames, size_t count) override {
    size_t done = 0;
    while (decoder_ && done < count) {
      const size_t got = decoder_->pull(frames + done * bits_.channels(), count - done);
      done += got;
      if (got > 0) continue;
      if (is_finished_) break;
      push();
    }
    return done;
  }

  void note_damage() override { bits_.input().note_warnings(); }

 private:
  void push() {
    if (at_ == size_) {
      size_ = bits_.read(bytes_, kBytesAtOnce);
      at_ = 0;
      if (size_ == 0) {
        decoder_->finish();
        is_finished_ = true;
        return;
      }
    }
    planes_.clear();
    for (const auto& channel : bytes_) planes_.push_back(channel.data() + at_);
    at_ += decoder_->push_planar(planes_, size_ - at_);
  }

  DsdBits bits_;
  std::optional<Decoder> decoder_;
  std::vector<std::vector<uint8_t>> bytes_;
  std::vector<const uint8_t*> planes_;
  size_t at_ = 0, size_ = 0;
  bool is_finished_ = false;
};

class PcmFrames : public FrameSource {
 public:
  PcmFrames(const std::string& path, const Stretch& stretch) : input_(path), left_(stretch.count) {
    std::vector<double> skipped;
    for (uint64_t begin = stretch.begin; begin > 0;) {
      skipped.resize(std::min<uint64_t>(begin, 1 << 14) * input_.channels());
      const size_t got = input_.read(std::span<double>(skipped));
      if (got == 0) break;
      begin -= got;
    }
  }

  size_t read(double* frames, size_t count) override {
    count = std::min<uint64_t>(count, left_);
    if (count == 0) return 0;
    const size_t got = input_.read(std::span<double>(frames, count * input_.channels()));
    left_ -= got;
    return got;
  }

  void note_damage() override {
    if (const std::string damage = input_.damage(); !damage.empty())
      cli::note_damage(input_.path(), damage);
  }

 private:
  PcmInput input_;
  uint64_t left_;
};

}  // namespace

SoundFacts facts_of(const std::string& path) {
  const auto bad_rate = [&](uint32_t rate_hz) {
    return Failure(kBadInput, path,
                   "has a rate of " + std::to_string(rate_hz) + " Hz, which cannot be measured");
  };
  if (const auto dsd = DsdInput::open(path)) {
    dsd->require_sound();
    const corvin_file_info& info = dsd->info();
    if (!is_octave_of_base(info.dsd_rate, 64, 512)) throw bad_rate(info.dsd_rate);
    return {.is_dsd = true,
            .rate_hz = info.dsd_rate,
            .channels = info.channels,
            .speakers = info.speakers,
            .samples = info.samples,
            .level_rate_hz = default_pcm_rate_hz(info.dsd_rate),
            .spectrum_rate_hz = spectrum_rate_hz(info.dsd_rate)};
  }
  const PcmInput pcm(path);
  if (pcm.rate_hz() < kLeastRateHz || pcm.rate_hz() > kMostRateHz) throw bad_rate(pcm.rate_hz());
  if (pcm.channels() > 64)
    throw Failure(kBadInput, path,
                  "has " + counted(pcm.channels(), "channel") + "; up to 64 can be measured");
  return {.rate_hz = pcm.rate_hz(),
          .channels = pcm.channels(),
          .speakers = pcm.speakers(),
          .samples = pcm.declared_frames(),
          .level_rate_hz = pcm.rate_hz(),
          .spectrum_rate_hz = pcm.rate_hz()};
}

DsdBits::DsdBits(const std::string& path, const Stretch& stretch)
    : input_(DsdInput::open_dsd(path)),
      begin_(std::min(stretch.begin, input_.info().samples)),
      samples_(std::min(stretch.count, input_.info().samples - begin_)) {
  if (left_ == 0) return;
  try {
    input_.file().seek(begin_);
    if (begin_ % 8 == 0) return;
    carried_.resize(channels());
    input_.file().read(carried_.data(), 1);
  } catch (const Error& error) {
    throw Failure(kBadInput, path, error.what());
  }
}

size_t DsdBits::read(std::vector<std::vector<uint8_t>>& to, size_t bytes) {
  bytes = std::min<uint64_t>(bytes, left_ / 8 + (left_ % 8 != 0));
  to.resize(channels());
  std::vector<uint8_t*> planes;
  for (auto& channel : to) {
    channel.assign(bytes, 0);
    planes.push_back(channel.data());
  }
  if (bytes == 0) return 0;
  size_t got = 0;
  try {
    got = input_.file().read_planar(planes, bytes);
  } catch (const Error& error) {
    const int why = error.system_error();
    throw Failure(kBadInput, input_.path(), why ? std::strerror(why) : error.what());
  }
  const auto shift = static_cast<unsigned>(begin_ % 8);
  if (shift == 0) {
    left_ -= std::min<uint64_t>(left_, 8 * uint64_t{got});
    return got;
  }
  // The last byte may have its samples in the carried one alone.
  for (size_t channel = 0; channel < to.size(); ++channel)
    for (uint8_t& byte : to[channel]) {
      const uint8_t next = byte;
      byte = static_cast<uint8_t>(carried_[channel] << shift | next >> (8 - shift));
      carried_[channel] = next;
    }
  left_ -= std::min<uint64_t>(left_, 8 * uint64_t{bytes});
  return bytes;
}

std::unique_ptr<FrameSource> open_frames(const std::string& path, const SoundFacts& facts,
                                         FramesFor use, const Stretch& stretch) {
  if (!facts.is_dsd) return std::make_unique<PcmFrames>(path, stretch);
  const bool is_spectrum = use == FramesFor::kSpectra;
  return std::make_unique<DsdFrames>(
      path, stretch, is_spectrum ? facts.spectrum_rate_hz : facts.level_rate_hz, is_spectrum);
}

}  // namespace corvin::cli
