// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/wavpack_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "cli/files/descriptor_bytes.h"
#include "cli/files/integer_samples.h"
#include "cli/files/tag_bytes.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 4096;

// The exponent of full scale, for floating point whose full scale is 1.
constexpr int kUnitExponent = 127;

}  // namespace

WavPackWriter::WavPackWriter(const PcmWriterConfig& config)
    : config_(config),
      tags_(config.tags ? tag_bytes(config.kind, *config.tags) : std::vector<std::byte>()) {
  if (const std::string why = why_not_writable(config); !why.empty())
    fail(why);
  else
    begin();
}

bool WavPackWriter::write(std::span<const uint8_t> frames) {
  if (!error().empty() || !context_) return false;
  sum_.add(frames);
  const size_t width = bytes_of(config_.format);
  while (!frames.empty()) {
    const size_t bytes = std::min(frames.size(), kFramesAtOnce * width * config_.channels);
    unpack(frames.first(bytes), width, 0, samples_);
    frames = frames.subspan(bytes);
    const size_t count = samples_.size() / config_.channels;
    if (!WavpackPackSamples(context_.get(), samples_.data(), static_cast<uint32_t>(count)))
      return coder_failed();
    frames_ += count;
  }
  return true;
}

bool WavPackWriter::finish() {
  if (!error().empty() || !context_) return false;
  std::array<uint8_t, 16> sum = sum_.finish();
  // The sum goes into a block of its own behind those of the sound, which come first.
  if (!WavpackFlushSamples(context_.get()) || !WavpackStoreMD5Sum(context_.get(), sum.data()) ||
      !WavpackFlushSamples(context_.get()))
    return coder_failed();
  if (config_.expected_frames != frames_ && !first_block_.empty()) {
    WavpackUpdateNumSamples(context_.get(), first_block_.data());
    if (!write_at(config_.descriptor, 0, std::as_bytes(std::span(first_block_))))
      return fail(std::strerror(errno));
  }
  context_.reset();
  if (!write_at(config_.descriptor, offset_, tags_)) return fail(std::strerror(errno));
  return true;
}

// ---- Details --------------------------------------------------------------------------------

int WavPackWriter::take_block(void* self, void* block, int32_t bytes) {
  auto& writer = *static_cast<WavPackWriter*>(self);
  const std::span whole(static_cast<const uint8_t*>(block), static_cast<size_t>(bytes));
  if (writer.offset_ == 0) writer.first_block_.assign(whole.begin(), whole.end());
  if (!write_at(writer.config_.descriptor, writer.offset_, std::as_bytes(whole))) {
    writer.system_error_ = errno;
    return 0;
  }
  writer.offset_ += whole.size();
  return 1;
}

void WavPackWriter::begin() {
  context_.reset(WavpackOpenFileOutput(take_block, this, nullptr));
  if (!context_) {
    fail(std::strerror(ENOMEM));
    return;
  }
  const int all_bits = bits_of(config_.format);
  WavpackConfig settings{};
  settings.bytes_per_sample = all_bits / 8;
  settings.bits_per_sample =
      config_.significant_bits != 0 ? static_cast<int>(config_.significant_bits) : all_bits;
  settings.num_channels = static_cast<int>(config_.channels);
  settings.channel_mask = static_cast<int32_t>(config_.speakers);
  settings.sample_rate = static_cast<int32_t>(config_.rate_hz);
  settings.flags = CONFIG_MD5_CHECKSUM;
  if (is_float(config_.format)) settings.float_norm_exp = kUnitExponent;
  const int64_t frames =
      config_.expected_frames ? static_cast<int64_t>(*config_.expected_frames) : -1;
  char ending[] = "wav";  // of the file that unpacking makes
  WavpackSetFileInformation(context_.get(), ending, WP_FORMAT_WAV);
  if (!WavpackSetConfiguration64(context_.get(), &settings, frames, nullptr) ||
      !WavpackPackInit(context_.get()))
    coder_failed();
}

bool WavPackWriter::coder_failed() {
  if (system_error_ != 0) return fail(std::strerror(system_error_));
  return fail(WavpackGetErrorMessage(context_.get()));
}

}  // namespace corvin::cli
