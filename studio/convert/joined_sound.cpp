// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/joined_sound.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "formats/bytes/bit_order.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kBytes = 1 << 14;  // of each channel at a time

// The silent byte of a stream that is cut at another sample than its first or every eighth.
std::uint8_t silence_from(std::uint64_t place) {
  const auto turned = static_cast<unsigned>(place % 8);
  return static_cast<std::uint8_t>(formats::kSilence << turned | formats::kSilence >> (8 - turned));
}

// Makes whole bytes of the samples from bit `from` (0..7) on, in that order.
void copy_bytes(const std::uint8_t* in, unsigned from, std::size_t bytes, std::uint8_t* out) {
  if (from == 0) {
    std::memcpy(out, in, bytes);
    return;
  }
  for (std::size_t i = 0; i < bytes; ++i) {
    out[i] = static_cast<std::uint8_t>(in[i] << from | in[i + 1] >> (8 - from));
  }
}

// Copies `samples` samples from bit `from` (0..7) on to bit `to` on, earliest sample in the most
// significant bit.
void copy_samples(const std::uint8_t* in, unsigned from, std::size_t samples, std::uint8_t* out,
                  std::size_t to) {
  while (samples > 0) {
    if (to % 8 == 0 && samples >= 8) {
      const std::size_t bytes = samples / 8;
      copy_bytes(in, from, bytes, out + to / 8);
      in += bytes;
      to += 8 * bytes;
      samples %= 8;
      continue;
    }
    // As many as fill a byte, or what is there of one.
    const auto head = static_cast<unsigned>(to % 8);
    const auto count = static_cast<unsigned>(
        std::min<std::size_t>({samples, std::size_t{8} - head, std::size_t{8} - from}));
    const unsigned kept = 0xffu & ~(0xffu >> count);
    const unsigned bits = (unsigned{*in} << from & kept) >> head;
    std::uint8_t& byte = out[to / 8];
    byte = static_cast<std::uint8_t>((byte & ~(kept >> head)) | bits);
    samples -= count;
    to += count;
    from += count;
    if (from == 8) {
      from = 0;
      ++in;
    }
  }
}

}  // namespace

JoinedSound::JoinedSound(std::vector<SoundPart> parts, std::size_t channels, std::uint64_t place,
                         bool lsb_first)
    : parts_(std::move(parts)),
      lsb_first_(lsb_first),
      silence_(silence_from(place)),
      joined_(channels, kBytes),
      read_(channels, kBytes + 1),
      channels_(channels) {}

// Puts the next samples of a part at bit `at` of the bytes to make. Returns how many it had.
std::size_t JoinedSound::append(const SoundPart& part, std::size_t samples, std::size_t at) {
  if (part.reader == nullptr) return samples;  // silence stands there already
  const std::uint64_t first = part.first + taken_;
  const auto skipped = static_cast<unsigned>(first % 8);
  const auto bytes = static_cast<std::size_t>(formats::BytesOf(skipped + samples));
  part.reader->Seek(first / 8);
  const std::size_t done = part.reader->Read(read_.places(), 1, bytes, false);
  const bool ends = done < bytes;
  failed_ = ends && part.reader->failed();
  if (ends) part_ = parts_.size();
  samples = std::min(samples, 8 * done - std::min<std::size_t>(8 * done, skipped));
  for (std::size_t c = 0; c < channels_; ++c) {
    copy_samples(read_.places()[c], skipped, samples, joined_.places()[c], at);
  }
  return samples;
}

std::size_t JoinedSound::next() {
  for (std::size_t c = 0; c < channels_; ++c) {
    std::fill_n(joined_.places()[c], joined_.bytes(), silence_);
  }
  std::size_t filled = 0;  // samples
  while (part_ < parts_.size() && filled < 8 * joined_.bytes()) {
    const SoundPart& part = parts_[part_];
    const auto wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(part.samples() - taken_, 8 * joined_.bytes() - filled));
    const std::size_t samples = append(part, wanted, filled);
    filled += samples;
    taken_ += samples;
    if (part_ == parts_.size() || taken_ < part.samples()) continue;
    ++part_;
    taken_ = 0;
  }
  samples_ += filled;
  const auto bytes = static_cast<std::size_t>(formats::BytesOf(filled));
  for (std::size_t c = 0; lsb_first_ && c < channels_; ++c) {
    std::uint8_t* place = joined_.places()[c];
    std::transform(place, place + bytes, place,
                   [](std::uint8_t byte) { return formats::kReversedBits[byte]; });
  }
  return bytes;
}

}  // namespace corvin::studio
