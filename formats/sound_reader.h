// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sound of a DSD file, channel by channel, in whatever order the file has it.

#ifndef CORVIN_FORMATS_SOUND_READER_H_
#define CORVIN_FORMATS_SOUND_READER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "formats/bytes/block_layout.h"
#include "formats/sound_file.h"

namespace corvin::formats {

class SoundReader {
 public:
  /// Both outlive the reader; the file is readable.
  SoundReader(ByteSource& source, const SoundFile& file);

  /// Reads `bytes` bytes of each channel from the position on; byte i of channel c goes to
  /// out[c][i * stride]. Returns how many there were: fewer at the end, and when the source fails
  /// or has become shorter; then failed(). Bits behind the last sample are silence.
  std::size_t Read(std::uint8_t* const* out, std::size_t stride, std::size_t bytes, bool lsb_first);

  /// Moves to byte `position` of each channel, at most the end.
  void Seek(std::uint64_t position) {
    position_ = position;
    failed_ = false;
  }
  std::uint64_t position() const { return position_; }
  bool failed() const { return failed_; }

  ByteSource& source() const { return source_; }
  const SoundFile& file() const { return file_; }

 private:
  const std::uint8_t* Fetch(std::uint64_t offset, std::size_t bytes);
  bool ReadRun(std::uint8_t* const* out, std::size_t stride, std::size_t run, bool reverse);

  ByteSource& source_;
  const SoundFile& file_;
  BlockLayout layout_;
  std::uint64_t position_ = 0;
  bool failed_ = false;
  std::vector<std::uint8_t> window_;  // a part of the file
  std::uint64_t window_offset_ = 0;
  std::size_t window_bytes_ = 0;
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SOUND_READER_H_
