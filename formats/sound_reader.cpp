// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/sound_reader.h"

#include <algorithm>
#include <numeric>

#include "formats/bytes/bit_order.h"
#include "formats/speakers.h"

namespace corvin::formats {
namespace {

constexpr std::size_t kWindowBytes = 1 << 18;

}  // namespace

SoundReader::SoundReader(ByteSource& source, SoundFile& file)
    : source_(source),
      file_(file),
      layout_{file.channels, file.block_bytes},
      window_(kWindowBytes) {
  Select({});
}

void SoundReader::Select(std::span<const std::uint32_t> channels) {
  selects_ = !channels.empty();
  selected_.assign(channels.begin(), channels.end());
  if (!channels.empty()) return;
  selected_.resize(file_.channels);
  std::iota(selected_.begin(), selected_.end(), 0u);
}

bool SoundReader::EndsEarly() {
  const ByteRange& sound = file_.sound;
  if (!file_.sequential || source_.failed() || source_.Size() >= sound.offset + sound.bytes) {
    return false;
  }
  file_.sound.bytes = source_.Size() - std::min(source_.Size(), sound.offset);
  file_.samples = std::min(file_.samples, layout_.WholeBytes(file_.sound.bytes) * 8);
  WarnOfMissingSound(file_);
  return true;
}

std::uint32_t SoundReader::Speakers() const { return MappedSpeakers(file_.speakers, selected_); }

// Null when fewer than `bytes` (at most a window) are there.
const std::uint8_t* SoundReader::Fetch(std::uint64_t offset, std::size_t bytes) {
  const bool held = offset >= window_offset_ && offset - window_offset_ <= window_bytes_ &&
                    window_bytes_ - (offset - window_offset_) >= bytes;
  if (!held) {
    const std::uint64_t end = file_.sound.offset + file_.sound.bytes;
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(window_.size(), end - offset));
    window_offset_ = offset;
    window_bytes_ = source_.Read(offset, window_.data(), count);
    if (window_bytes_ < bytes) return nullptr;
  }
  return &window_[static_cast<std::size_t>(offset - window_offset_)];
}

bool SoundReader::ReadRun(std::uint8_t* const* out, std::size_t stride, std::size_t run,
                          bool reverse) {
  const bool together = layout_.interleaved();  // all channels in one part of the file
  const std::uint8_t* in = nullptr;
  for (std::size_t c = 0; c < selected_.size(); ++c) {
    if (c == 0 || !together) {
      const std::uint32_t channel = together ? 0 : selected_[c];
      in = Fetch(file_.sound.offset + layout_.Offset(channel, position_),
                 together ? run * file_.channels : run);
      if (in == nullptr) return false;
    }
    CopyBytes(together ? in + selected_[c] : in, layout_.Stride(), out[c], stride, run, reverse);
  }
  return true;
}

std::size_t SoundReader::Read(std::uint8_t* const* out, std::size_t stride, std::size_t bytes,
                              bool lsb_first) {
  const std::size_t channels = selected_.size();
  std::uint64_t total = file_.ChannelBytes();
  const std::uint64_t most = layout_.interleaved() ? kWindowBytes / file_.channels : kWindowBytes;
  std::uint8_t* places[kMaxChannels];
  std::copy(out, out + channels, places);
  std::size_t done = 0;
  while (done < bytes && position_ < total && !failed_) {
    const auto run = static_cast<std::size_t>(
        std::min({std::uint64_t{bytes - done}, total - position_, layout_.Run(position_), most}));
    if (!ReadRun(places, stride, run, lsb_first != file_.lsb_first)) {
      if (EndsEarly()) {
        total = file_.ChannelBytes();
        continue;
      }
      failed_ = true;
      break;
    }
    position_ += run;
    done += run;
    for (std::size_t c = 0; c < channels; ++c) {
      places[c] += run * stride;
      if (position_ == total) SilenceBehind(file_.samples, lsb_first, *(places[c] - stride));
    }
  }
  return done;
}

}  // namespace corvin::formats
