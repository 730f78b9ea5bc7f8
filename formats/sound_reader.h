// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sound of a DSD file, channel by channel, in whatever order the file has it; of all of its
// channels, or of those that somebody wants, in their order.

#ifndef CORVIN_FORMATS_SOUND_READER_H_
#define CORVIN_FORMATS_SOUND_READER_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "formats/bytes/block_layout.h"
#include "formats/sound_file.h"

namespace corvin::formats {

class SoundReader {
 public:
  /// Both outlive the reader; the file is readable.
  SoundReader(ByteSource& source, SoundFile& file);

  /// Has Read() give the file's channels of these numbers, at most kMaxChannels; none: all of them.
  void Select(std::span<const std::uint32_t> channels);
  bool selects() const { return selects_; }  ///< rather than reading all as they stand
  std::uint32_t channels() const { return static_cast<std::uint32_t>(selected_.size()); }

  /// Reads `bytes` bytes of each channel from the position on; byte i of channel c goes to
  /// out[c][i * stride]. Returns how many there were: fewer at the end, and when the source fails
  /// or has become shorter; then failed(). A sequential source that ends early is no failure. Bits behind the last sample are silence.
  std::size_t Read(std::uint8_t* const* out, std::size_t stride, std::size_t bytes, bool lsb_first);

  /// Moves to byte `position` of each channel, at most the end.
  void Seek(std::uint64_t position) {
    position_ = position;
    failed_ = false;
  }
  /// The mask of the channels that are read; 0 where their order is not that of the bits.
  std::uint32_t Speakers() const;

  std::uint64_t position() const { return position_; }
  bool failed() const { return failed_; }

  /// After a read that brought less than it should: whether the source is sequential and has ended.
  /// The file has then the samples that came, and a warning.
  bool EndsEarly();

  ByteSource& source() const { return source_; }
  const SoundFile& file() const { return file_; }

 private:
  const std::uint8_t* Fetch(std::uint64_t offset, std::size_t bytes);
  bool ReadRun(std::uint8_t* const* out, std::size_t stride, std::size_t run, bool reverse);

  ByteSource& source_;
  SoundFile& file_;
  BlockLayout layout_;
  bool selects_ = false;
  std::vector<std::uint32_t> selected_;  // the file's number of each channel that is read
  std::uint64_t position_ = 0;
  bool failed_ = false;
  std::vector<std::uint8_t> window_;  // a part of the file
  std::uint64_t window_offset_ = 0;
  std::size_t window_bytes_ = 0;
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SOUND_READER_H_
