// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/sound_file.h"

#include <utility>

#include "formats/bytes/sequential_source.h"
#include "formats/chunk_cursor.h"

namespace corvin::formats {

namespace {

// Its channels are read one after the other, behind a window of a quarter of the backlog.
constexpr std::uint64_t kMostSequentialGroup = SequentialSource::kBacklogBytes / 2;

}  // namespace

void SoundFile::Warn(std::string sentence) {
  constexpr std::size_t kMost = 32;  // a broken file could go on for ever
  if (warnings.size() < kMost) warnings.push_back(std::move(sentence));
}

void SoundFile::Fail(Readable why, std::string sentence) {
  if (readable != Readable::kYes) return;
  readable = why;
  problem = std::move(sentence);
}

bool ReadSoundFile(ByteSource& source, SoundFile& file) {
  file = {};
  file.sequential = source.IsSequential();
  ChunkCursor cursor(source, ByteOrder::kBig);
  ChunkId magic{};
  if (!cursor.Read(magic.data(), magic.size())) return false;
  file.kind = ContainerKindOf(magic);
  switch (file.kind) {
    case kDsdiff:
      WalkDsdiff(source, file);
      break;
    case kDsf:
      WalkDsf(source, file);
      break;
    case kOneBit:
      WalkOneBit(source, file);
      break;
    case kUnknown:
      return false;
  }
  if (file.channels == 0) {
    file.Fail(Readable::kDamaged, "is damaged: its headers declare no channels");
  } else if (file.channels > kMaxChannels) {
    file.Fail(Readable::kUnsupported, "has " + std::to_string(file.channels) + " channels; up to " +
                                          std::to_string(kMaxChannels) + " can be read");
  }
  if (file.rate_hz == 0) {
    file.Fail(Readable::kDamaged, "is damaged: its headers declare no rate");
  }
  const std::uint64_t group = std::uint64_t{file.block_bytes} * file.channels;
  if (file.sequential && group > kMostSequentialGroup) {
    file.Fail(Readable::kUnsupported, "has blocks that are too large to be read from a pipe");
  }
  if (file.readable != Readable::kYes) file.samples = 0;
  return true;
}

void SettleInterleaved(SoundFile& file, std::uint64_t stated_bytes) {
  if (file.channels == 0) return;
  const std::uint64_t per_channel = stated_bytes / file.channels;
  constexpr std::uint64_t kMost = UINT64_MAX / 8;
  file.stated_samples = per_channel > kMost ? UINT64_MAX / 8 * 8 : per_channel * 8;
  file.samples = file.sound.bytes / file.channels * 8;
  if (stated_bytes % file.channels != 0) {
    file.Warn("the sound ends within a group of one byte of each channel; that rest is left out");
  }
  WarnOfMissingSound(file);
}

void WarnOfMissingSound(SoundFile& file) {
  if (file.samples >= file.stated_samples) return;
  file.Warn("is cut short: of the " + std::to_string(file.stated_samples) +
            " samples per channel that it declares it holds " + std::to_string(file.samples));
}

}  // namespace corvin::formats
