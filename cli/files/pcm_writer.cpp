// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_writer.h"

#include "cli/files/flac_writer.h"
#include "cli/files/sndfile_writer.h"
#include "cli/files/tag_bytes.h"
#include "cli/files/wavpack_writer.h"

namespace corvin::cli {
namespace {

// Above them no reader of ours takes the file back, whatever its header could state.
constexpr uint32_t kMostChannels = 64;

}  // namespace

std::string why_not_writable(const PcmWriterConfig& config) {
  const std::string name = pcm_kind_name(config.kind);
  const bool is_flac = config.kind == PcmKind::kFlac;
  if (is_flac && is_float(config.format)) return "cannot hold floating point: FLAC has integers";
  if (config.kind == PcmKind::kWavPack && config.format == CORVIN_F64)
    return "cannot hold floating point of 64 bits: WavPack has 32";
  const uint32_t most_channels = is_flac ? kMostFlacChannels : kMostChannels;
  if (config.channels > most_channels)
    return "cannot hold " + std::to_string(config.channels) + " channels; " + name +
           " takes up to " + std::to_string(most_channels);
  if (is_flac && config.rate_hz > kMostFlacRateHz)
    return "cannot hold a rate of " + std::to_string(config.rate_hz) + " Hz; FLAC takes up to " +
           std::to_string(kMostFlacRateHz);
  const uint64_t bytes =
      config.expected_frames.value_or(0) * config.channels * bytes_of(config.format);
  const uint64_t tags = config.tags && config.kind == PcmKind::kAiff
                            ? tag_bytes(config.kind, *config.tags).size()
                            : 0;
  if (config.kind == PcmKind::kAiff && bytes + tags > kMostShortBytes)
    return "would be larger than the 4 GiB that AIFF can hold; CAF, W64 and RF64 hold more";
  return {};
}

std::unique_ptr<PcmWriter> make_pcm_writer(PcmWriterConfig config) {
  if (config.format == CORVIN_S20) config.significant_bits = 20;
  switch (config.kind) {
    case PcmKind::kFlac:
      return std::make_unique<FlacWriter>(config);
    case PcmKind::kWavPack:
      return std::make_unique<WavPackWriter>(config);
    default:
      return std::make_unique<SndfileWriter>(config);
  }
}

}  // namespace corvin::cli
