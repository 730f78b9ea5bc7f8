// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sound of several files, one behind the other, as bytes of each channel. A file may begin and
// end within a byte: what follows is moved up to it bit by bit.

#ifndef CORVIN_STUDIO_CONVERT_JOINED_SOUND_H_
#define CORVIN_STUDIO_CONVERT_JOINED_SOUND_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "formats/sound_reader.h"
#include "studio/convert/channel_bytes.h"

namespace corvin::studio {

/// From one of a file's samples up to, without it, another one.
struct SoundPart {
  formats::SoundReader* reader = nullptr;  ///< null: silence
  std::uint64_t first = 0;
  std::uint64_t end = 0;

  std::uint64_t samples() const { return end - first; }
};

class JoinedSound {
 public:
  /// @param parts      of files of so many channels; readers may come more than once, and are used
  ///                   by nobody else meanwhile
  /// @param place      of the first sample in the whole, on whose bytes silence is to stand
  /// @param lsb_first  of the bytes to make
  JoinedSound(std::vector<SoundPart> parts, std::size_t channels, std::uint64_t place,
              bool lsb_first);

  /// Makes the next bytes of each channel at places() and returns their number; 0 at the end. What
  /// a last byte lacks is silence.
  std::size_t next();
  std::uint8_t* const* places() const { return joined_.places(); }

  /// Made so far.
  std::uint64_t samples() const { return samples_; }

  /// Whether a file could not be read, which ends the sound with what came before.
  bool failed() const { return failed_; }

 private:
  std::size_t append(const SoundPart& part, std::size_t samples, std::size_t at);

  std::vector<SoundPart> parts_;
  std::size_t part_ = 0;
  std::uint64_t taken_ = 0;  // of that part
  bool lsb_first_;
  std::uint8_t silence_;
  ChannelBytes joined_;
  ChannelBytes read_;  // of one file, from the byte on that holds the next sample
  std::size_t channels_;
  std::uint64_t samples_ = 0;
  bool failed_ = false;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_JOINED_SOUND_H_
