// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a DSD file holds and where, by the published rules of the three containers. Oddities that do
// not keep the sound from being read become warnings, one sentence each. This is not the classic
// engine's view of a file, which DSDInfo() tells.

#ifndef CORVIN_FORMATS_SOUND_FILE_H_
#define CORVIN_FORMATS_SOUND_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "formats/bytes/bit_order.h"
#include "formats/bytes/byte_source.h"
#include "formats/container.h"

namespace corvin::formats {

enum class Readable { kYes, kDamaged, kCompressed, kUnsupported };

/// Where something stands in a file.
struct ByteRange {
  std::uint64_t offset = 0;
  std::uint64_t bytes = 0;
};

/// A part of a file, as the walk took it.
struct SoundChunk {
  ChunkId id{};
  bool is_part = false;  ///< of the last one before it that is none
  std::uint64_t header_offset = 0;
  ByteRange content;               ///< that is there
  std::uint64_t stated_bytes = 0;  ///< of content
};

struct DsdiffComment {
  std::uint16_t year = 0;
  bool is_general = false;  ///< on the whole file
  ByteRange text;
};

inline constexpr std::uint32_t kMaxChannels = 64;
inline constexpr std::uint32_t kMaxBlockBytes = 1u << 20;

struct SoundFile {
  ContainerKind kind = kUnknown;
  Readable readable = Readable::kYes;
  std::string problem;  ///< why it is not readable
  std::vector<std::string> warnings;

  std::uint32_t rate_hz = 0;
  std::uint32_t channels = 0;
  std::uint32_t speakers = 0;  ///< by formats/speakers.h, in the channels' order; 0 unknown
  std::uint64_t samples = 0;   ///< per channel, that are there
  std::uint64_t stated_samples = 0;
  bool sequential =
      false;  ///< read once, in order: then `samples` are what is stated until the end
  bool lsb_first = false;
  std::uint32_t block_bytes = 1;  ///< of a channel before the next one's
  ByteRange sound;                ///< from the first byte to the end of what is there
  std::string compression;        ///< DSDIFF: the compression's name

  std::vector<SoundChunk> chunks;
  std::vector<ByteRange> id3;  ///< blocks, in file order
  ByteRange artist, title;     ///< DSDIFF
  std::vector<DsdiffComment> comments;

  /// Adds a warning unless there are very many already.
  void Warn(std::string sentence);
  /// Sets the first problem.
  void Fail(Readable why, std::string sentence);

  /// Bytes of each channel, the last one perhaps in part.
  std::uint64_t ChannelBytes() const { return BytesOf(samples); }
};

/// Reads the headers. False when the source is no DSD file, which its first four bytes tell; in
/// every other case `file` says what was found.
bool ReadSoundFile(ByteSource& source, SoundFile& file);

// ---- The walks, one for each container, for ReadSoundFile() alone ----

void WalkDsf(ByteSource& source, SoundFile& file);
void WalkDsdiff(ByteSource& source, SoundFile& file);
void WalkOneBit(ByteSource& source, SoundFile& file);

/// Sets the length of sound whose channels take turns byte by byte, from the bytes that are stated
/// for all channels and those that are there.
void SettleInterleaved(SoundFile& file, std::uint64_t stated_bytes);

/// Warns of `stated` samples of which fewer are there.
void WarnOfMissingSound(SoundFile& file);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_SOUND_FILE_H_
