// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// FLAC through its own library, which knows 32 bits and says which frames fail their checks.

#include <FLAC/stream_decoder.h>
#include <sndfile.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <vector>

#include "cli/files/flac_tags.h"
#include "cli/files/pcm_reader.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

struct Delete {
  void operator()(FLAC__StreamDecoder* decoder) const { FLAC__stream_decoder_delete(decoder); }
};

int format_of(uint32_t bits) {
  return bits <= 8    ? SF_FORMAT_PCM_S8
         : bits <= 16 ? SF_FORMAT_PCM_16
         : bits <= 24 ? SF_FORMAT_PCM_24
                      : SF_FORMAT_PCM_32;
}

class FlacReader : public PcmReader {
 public:
  explicit FlacReader(const std::string& path) : decoder_(FLAC__stream_decoder_new()) {
    const auto bad = [&](const std::string& why) { return Failure(kBadInput, path, why); };
    if (!decoder_) throw std::bad_alloc();
    FLAC__StreamDecoder* decoder = decoder_.get();
    FLAC__stream_decoder_set_md5_checking(decoder, true);
    FLAC__stream_decoder_set_metadata_respond(decoder, FLAC__METADATA_TYPE_VORBIS_COMMENT);
    const auto status = FLAC__stream_decoder_init_file(
        decoder, path.c_str(),
        [](const FLAC__StreamDecoder*, const FLAC__Frame* frame, const FLAC__int32* const buffer[],
           void* self) { return static_cast<FlacReader*>(self)->take(*frame, buffer); },
        [](const FLAC__StreamDecoder*, const FLAC__StreamMetadata* block, void* self) {
          static_cast<FlacReader*>(self)->look_at(*block);
        },
        [](const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* self) {
          static_cast<FlacReader*>(self)->note_error();
        },
        this);
    if (status != FLAC__STREAM_DECODER_INIT_STATUS_OK ||
        !FLAC__stream_decoder_process_until_end_of_metadata(decoder) || bits_ == 0)
      throw bad("is damaged: its FLAC header cannot be read");
    errors_ = 0;  // what stood before the sound
  }

  size_t read(std::span<double> samples) override {
    const double step = std::ldexp(1.0, 1 - static_cast<int>(bits_));
    return copy(samples, [&](int32_t sample) { return sample * step; });
  }

  size_t read(std::span<int> samples) override {
    return copy(samples, [&](int32_t sample) {
      return static_cast<int>(static_cast<uint32_t>(sample) << (32 - bits_));
    });
  }

  std::string damage() const override {
    if (errors_ != 0) return "is damaged: parts of its sound fail their check";
    if (has_failed_) return "is damaged: its sound changes its form or cannot be decoded";
    if (is_other_sum_) return "is damaged: its sound does not match its checksum";
    return {};
  }

 private:
  void look_at(const FLAC__StreamMetadata& block) {
    if (block.type == FLAC__METADATA_TYPE_STREAMINFO) {
      const auto& info = block.data.stream_info;
      bits_ = info.bits_per_sample;
      facts_ = {.rate_hz = info.sample_rate,
                .channels = info.channels,
                .sample_format = format_of(bits_),
                .kind = "FLAC",
                .bits = bits_,
                .speakers = kFlacUsualSpeakers[info.channels],
                .odd_bits = bits_ % 8 != 0 ? bits_ : 0};
      if (info.total_samples != 0) facts_.frames = info.total_samples;
      return;
    }
    const std::string start = std::string(kFlacSpeakers) + "=";
    const auto& all = block.data.vorbis_comment;
    for (const auto& entry : std::span(all.comments, all.num_comments)) {
      const std::string text(reinterpret_cast<const char*>(entry.entry), entry.length);
      if (!text.starts_with(start)) continue;
      const auto mask =
          static_cast<uint32_t>(std::strtoul(text.c_str() + start.size(), nullptr, 0));
      if (std::popcount(mask) == static_cast<int>(facts_.channels)) facts_.speakers = mask;
    }
  }

  // Behind the last frame tags of other kinds may stand, which are no sound.
  void note_error() {
    if (!facts_.frames || next_ < *facts_.frames) ++errors_;
  }

  FLAC__StreamDecoderWriteStatus take(const FLAC__Frame& frame, const FLAC__int32* const* buffer) {
    const auto& header = frame.header;
    if (header.channels != facts_.channels || header.bits_per_sample != bits_) {
      has_failed_ = true;
      return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
    }
    // Frames that were lost become silence, so that what follows stays in its place; but a number
    // that is itself damaged must not make hours of it.
    const uint64_t start = header.number.sample_number;
    const bool is_known = header.number_type == FLAC__FRAME_NUMBER_TYPE_SAMPLE_NUMBER;
    constexpr uint64_t kMostSeconds = 60;
    if (is_known && start > next_ && start < facts_.frames.value_or(0) &&
        start - next_ <= kMostSeconds * facts_.rate_hz) {
      silence_ = (start - next_) * facts_.channels;
      next_ = start;
    }
    for (size_t i = 0; i < header.blocksize; ++i)
      for (size_t channel = 0; channel < facts_.channels; ++channel)
        samples_.push_back(buffer[channel][i]);
    next_ += header.blocksize;
    return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
  }

  // Decodes the next frame; false at the end.
  bool go_on() {
    if (is_over_) return false;
    samples_.clear();
    used_ = 0;
    while (samples_.empty()) {
      const bool is_good = FLAC__stream_decoder_process_single(decoder_.get()) != 0;
      const auto state = FLAC__stream_decoder_get_state(decoder_.get());
      if (!is_good) has_failed_ = true;
      if (is_good && state != FLAC__STREAM_DECODER_END_OF_STREAM) continue;
      is_over_ = true;
      const bool is_whole = next_ >= facts_.frames.value_or(0);
      if (!FLAC__stream_decoder_finish(decoder_.get()) && is_whole) is_other_sum_ = true;
      break;
    }
    return !samples_.empty();
  }

  template <class Sample, class Scale>
  size_t copy(std::span<Sample> to, Scale scale) {
    size_t done = 0;
    const size_t wanted = to.size() / facts_.channels * facts_.channels;
    while (done < wanted) {
      if (used_ == samples_.size() && !go_on()) break;
      if (silence_ > 0) {
        const size_t part = std::min<uint64_t>(wanted - done, silence_);
        std::fill_n(to.begin() + static_cast<std::ptrdiff_t>(done), part, Sample{});
        silence_ -= part;
        done += part;
        continue;
      }
      const size_t part = std::min(wanted - done, samples_.size() - used_);
      std::transform(samples_.begin() + static_cast<std::ptrdiff_t>(used_),
                     samples_.begin() + static_cast<std::ptrdiff_t>(used_ + part),
                     to.begin() + static_cast<std::ptrdiff_t>(done), scale);
      done += part;
      used_ += part;
    }
    return done / facts_.channels;
  }

  uint32_t bits_ = 0;
  uint64_t next_ = 0;             // frame
  std::vector<int32_t> samples_;  // decoded, of which `used_` are handed out
  size_t used_ = 0;
  uint64_t silence_ = 0;  // samples of it that come before them
  int errors_ = 0;
  bool has_failed_ = false;
  bool is_other_sum_ = false;
  bool is_over_ = false;
  std::unique_ptr<FLAC__StreamDecoder, Delete> decoder_;  // calls this until it is gone
};

// An ID3v2 block may stand before the file's own beginning.
bool is_flac(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  char start[10] = {};
  file.read(start, sizeof start);
  if (std::string_view(start, 3) == "ID3") {
    std::streamoff bytes = 0;
    for (int i = 6; i < 10; ++i) bytes = bytes << 7 | (start[i] & 0x7f);
    file.seekg(bytes + 10);
    file.read(start, 4);
  }
  return std::string_view(start, 4) == "fLaC";
}

}  // namespace

std::unique_ptr<PcmReader> open_flac(const std::string& path) {
  if (!is_flac(path)) return nullptr;
  return std::make_unique<FlacReader>(path);
}

}  // namespace corvin::cli
