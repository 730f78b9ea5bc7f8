// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Finds the sound data of a DSD file for the conversion. The file query walks the same containers
// by rules of its own: it measures, this one plays.

#ifndef CORVIN_CLASSIC_FILES_SOUND_SEARCH_H_
#define CORVIN_CLASSIC_FILES_SOUND_SEARCH_H_

#include <cstdint>
#include <cstdio>
#include <optional>

/// Sound data at the stream's position, with what its headers say of it, unchecked.
struct DsdSound {
  std::uint64_t bytes = 0;         ///< all channels, within the file but for a DSF's last group
  std::uint64_t sample_count = 0;  ///< per channel, of those bytes
  std::uint32_t channels = 0;
  std::uint32_t rate_hz = 0;
  bool dsf = false;               ///< in blocks of one channel; else one byte per channel in turn
  std::uint32_t block_bytes = 0;  ///< DSF: bytes per channel in a block
};

class SoundSearch {
 public:
  /// @param file  at its start; the caller closes it
  explicit SoundSearch(std::FILE* file);

  /// Moves the stream to the next sound data; empty when there is none left. A DSF file may hold
  /// several, each searched for from where the last one was read to.
  std::optional<DsdSound> Next();

 private:
  enum class Kind { kDsf, kDsdiff, kOneBit, kDone };

  std::optional<DsdSound> NextDsf();
  std::optional<DsdSound> FindDsdiff();
  std::optional<DsdSound> FindOneBit();

  std::FILE* file_;
  Kind kind_ = Kind::kDone;
  std::optional<DsdSound> dsf_format_;  ///< from the last format chunk
};

#endif  // CORVIN_CLASSIC_FILES_SOUND_SEARCH_H_
