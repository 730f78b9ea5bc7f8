// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/sound_reader.h"

#include <algorithm>
#include <cstring>

#include "formats/bytes/bit_order.h"

namespace corvin::formats {
namespace {

constexpr std::size_t kWindowBytes = 1 << 18;

void Spread(const std::uint8_t* in, std::size_t in_stride, std::uint8_t* out,
            std::size_t out_stride, std::size_t count, bool reverse) {
  if (in_stride == 1 && out_stride == 1 && !reverse) {
    std::memcpy(out, in, count);
    return;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t byte = in[i * in_stride];
    out[i * out_stride] = reverse ? kReversedBits[byte] : byte;
  }
}

}  // namespace

SoundReader::SoundReader(ByteSource& source, const SoundFile& file)
    : source_(source), file_(file), window_(kWindowBytes) {}

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
  const std::size_t channels = file_.channels;
  if (file_.block_bytes == 1) {
    const std::uint8_t* in = Fetch(file_.sound.offset + position_ * channels, run * channels);
    if (in == nullptr) return false;
    for (std::size_t c = 0; c < channels; ++c) {
      Spread(in + c, channels, out[c], stride, run, reverse);
    }
    return true;
  }
  const std::uint64_t block = file_.block_bytes;
  const std::uint64_t group = position_ / block * block * channels;
  for (std::size_t c = 0; c < channels; ++c) {
    const std::uint64_t offset = file_.sound.offset + group + c * block + position_ % block;
    const std::uint8_t* in = Fetch(offset, run);
    if (in == nullptr) return false;
    Spread(in, 1, out[c], stride, run, reverse);
  }
  return true;
}

std::size_t SoundReader::Read(std::uint8_t* const* out, std::size_t stride, std::size_t bytes,
                              bool lsb_first) {
  const std::size_t channels = file_.channels;
  const std::uint64_t total = file_.ChannelBytes();
  const std::uint64_t block = file_.block_bytes;
  std::uint8_t* places[kMaxChannels];
  std::copy(out, out + channels, places);
  std::size_t done = 0;
  while (done < bytes && position_ < total && !failed_) {
    std::uint64_t run = std::min<std::uint64_t>(bytes - done, total - position_);
    run = block == 1 ? std::min<std::uint64_t>(run, kWindowBytes / channels)
                     : std::min({run, block - position_ % block, std::uint64_t{kWindowBytes}});
    const auto count = static_cast<std::size_t>(run);
    if (!ReadRun(places, stride, count, lsb_first != file_.lsb_first)) {
      failed_ = true;
      break;
    }
    position_ += count;
    done += count;
    for (std::size_t c = 0; c < channels; ++c) {
      places[c] += count * stride;
      if (position_ == total && file_.samples % 8 != 0) {
        std::uint8_t& last = *(places[c] - stride);
        last = SilencedBehind(last, static_cast<unsigned>(file_.samples % 8), lsb_first);
      }
    }
  }
  return done;
}

}  // namespace corvin::formats
