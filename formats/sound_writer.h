// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writes the three containers by their published rules: true sizes and speaker names for every
// channel count, a last block filled up, an exact number of samples. Where that is known before, all is
// written once and in order, for sinks that cannot go back.

#ifndef CORVIN_FORMATS_SOUND_WRITER_H_
#define CORVIN_FORMATS_SOUND_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "formats/bytes/block_layout.h"
#include "formats/bytes/byte_source.h"
#include "formats/container.h"
#include "formats/container_tags.h"

namespace corvin::formats {

struct SoundFormat {
  ContainerKind kind = kDsf;
  std::uint32_t rate_hz = 0;
  std::uint32_t channels = 0;
  std::uint32_t speakers = 0;  ///< as in formats/speakers.h; 0: the usual ones
  std::uint64_t samples = 0;   ///< per channel, that will come; 0: not known
};

/// The most channels that the container can name; 0 for kUnknown.
std::uint32_t MostChannels(ContainerKind kind);

/// Whether the container knows samples; else it knows whole bytes.
constexpr bool StatesSamples(ContainerKind kind) { return kind == kDsf; }

class SoundWriter {
 public:
  /// Both outlive the writer. The format is one that the container can state. The tags are written at
  /// the end; with a known number of samples their size is from the first Write() on.
  SoundWriter(ByteSink& sink, const SoundFormat& format, const ContainerTags& tags);

  /// Writes a header for no sound, unless the number of samples is known. This and everything below
  /// returns false once writing has failed.
  bool Start();

  /// Bytes of each channel that can still be written.
  std::uint64_t room() const;

  /// Appends `bytes` bytes of each channel; byte i of channel c is in[c][i * stride].
  bool Write(const std::uint8_t* const* in, std::size_t stride, std::size_t bytes, bool lsb_first);

  /// Completes the file.
  /// @param samples  per channel, at most what was written, and in its last byte unless the sound
  ///                 goes on; what was known before. DSF alone states it; in the others silence fills
  ///                 the last byte
  /// @param goes_on  in another file: what was written behind the samples stays
  bool Finish(std::uint64_t samples, bool goes_on = false);

  /// How much `bytes` bytes of a channel are with their last block filled up.
  std::uint64_t WholeBlocks(std::uint64_t bytes) const;

  const SoundFormat& format() const { return format_; }
  std::uint64_t channel_bytes() const { return channel_bytes_; }

 private:
  std::uint8_t& Held(std::size_t channel, std::size_t byte);
  bool Flush(std::size_t bytes);
  bool IsKnown() const { return format_.samples != 0; }
  bool WriteHeader(std::uint64_t samples, std::uint64_t tag_bytes);
  std::vector<std::uint8_t> TagBytes() const;
  std::vector<std::uint8_t> Header(std::uint64_t samples, std::uint64_t tag_bytes) const;
  std::vector<std::uint8_t> DsfHeader(std::uint64_t samples, std::uint64_t tag_bytes) const;
  std::vector<std::uint8_t> DsdiffHeader(std::uint64_t tag_bytes) const;
  std::vector<std::uint8_t> OneBitHeader() const;
  std::uint64_t AllChannelBytes() const;
  std::uint64_t SoundBytes() const;

  ByteSink& sink_;
  SoundFormat format_;
  const ContainerTags& tags_;
  BlockLayout layout_;
  bool lsb_first_;
  std::vector<std::uint8_t> buffer_;  // as it will stand in the file
  std::size_t held_ = 0;              // bytes of each channel in it
  std::uint64_t channel_bytes_ = 0;   // bytes of each channel in all
  std::uint64_t offset_ = 0;          // where the buffer goes; 0: the header is to come
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SOUND_WRITER_H_
