// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/flac_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/files/descriptor_bytes.h"
#include "cli/files/integer_samples.h"

namespace corvin::cli {
namespace {

// Frames that are unpacked at a time, so that memory does not grow with what is handed in.
constexpr size_t kFramesAtOnce = 4096;

}  // namespace

FlacWriter::FlacWriter(const PcmWriterConfig& config)
    : config_(config), encoder_(FLAC__stream_encoder_new()) {
  if (const std::string why = why_not_writable(config); !why.empty())
    fail(why);
  else if (!encoder_)
    fail(std::strerror(ENOMEM));
  else
    begin();
}

bool FlacWriter::write(std::span<const uint8_t> frames) {
  if (!error().empty() || !is_open_) return false;
  const size_t width = bytes_of(config_.format);
  const auto bits = static_cast<int>(FLAC__stream_encoder_get_bits_per_sample(encoder_.get()));
  while (!frames.empty()) {
    const size_t bytes = std::min(frames.size(), kFramesAtOnce * width * config_.channels);
    unpack(frames.first(bytes), width, bits_of(config_.format) - bits, samples_);
    frames = frames.subspan(bytes);
    const auto count = static_cast<uint32_t>(samples_.size() / config_.channels);
    if (!FLAC__stream_encoder_process_interleaved(encoder_.get(), samples_.data(), count))
      return encoder_failed();
  }
  return true;
}

bool FlacWriter::finish() {
  if (!error().empty() || !is_open_) return false;
  is_open_ = false;
  return FLAC__stream_encoder_finish(encoder_.get()) ? true : encoder_failed();
}

// ---- Details --------------------------------------------------------------------------------

void FlacWriter::begin() {
  FLAC__StreamEncoder* encoder = encoder_.get();
  const auto bits = static_cast<uint32_t>(bits_of(config_.format));
  FLAC__stream_encoder_set_channels(encoder, config_.channels);
  FLAC__stream_encoder_set_sample_rate(encoder, config_.rate_hz);
  FLAC__stream_encoder_set_bits_per_sample(
      encoder, config_.significant_bits != 0 ? config_.significant_bits : bits);
  FLAC__stream_encoder_set_total_samples_estimate(encoder, config_.expected_frames.value_or(0));
  // The subset for streaming leaves out high rates and 32 bits.
  FLAC__stream_encoder_set_streamable_subset(encoder, false);

  const TagSet* tags = config_.tags;
  const bool is_usual =
      config_.speakers == 0 || config_.speakers == kFlacUsualSpeakers[config_.channels];
  char mask[16] = "";
  if (!is_usual)
    std::snprintf(mask, sizeof mask, "0x%04X", static_cast<unsigned>(config_.speakers));
  if (!is_usual || tags != nullptr) blocks_ = flac_blocks(tags, mask);
  std::vector<FLAC__StreamMetadata*> blocks;
  for (const auto& block : blocks_) blocks.push_back(block.get());
  FLAC__stream_encoder_set_metadata(encoder, blocks.data(), static_cast<uint32_t>(blocks.size()));

  const FLAC__StreamEncoderInitStatus status = FLAC__stream_encoder_init_stream(
      encoder,
      [](const FLAC__StreamEncoder*, const FLAC__byte* bytes, size_t count, uint32_t, uint32_t,
         void* data) {
        FlacWriter& writer = of(data);
        if (!write_at(writer.config_.descriptor, writer.offset_,
                      std::as_bytes(std::span(bytes, count)))) {
          writer.system_error_ = errno;
          return FLAC__STREAM_ENCODER_WRITE_STATUS_FATAL_ERROR;
        }
        writer.offset_ += count;
        return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
      },
      [](const FLAC__StreamEncoder*, FLAC__uint64 offset, void* data) {
        of(data).offset_ = offset;
        return FLAC__STREAM_ENCODER_SEEK_STATUS_OK;
      },
      [](const FLAC__StreamEncoder*, FLAC__uint64* offset, void* data) {
        *offset = of(data).offset_;
        return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
      },
      nullptr, this);
  if (status != FLAC__STREAM_ENCODER_INIT_STATUS_OK)
    fail(system_error_ != 0 ? std::strerror(system_error_)
                            : FLAC__StreamEncoderInitStatusString[status]);
  is_open_ = error().empty();
}

bool FlacWriter::encoder_failed() {
  if (system_error_ != 0) return fail(std::strerror(system_error_));
  return fail(FLAC__stream_encoder_get_resolved_state_string(encoder_.get()));
}

}  // namespace corvin::cli
