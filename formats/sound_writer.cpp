// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/sound_writer.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "formats/bytes/bit_order.h"
#include "formats/bytes/byte_order.h"
#include "formats/sound_file.h"
#include "formats/speakers.h"

namespace corvin::formats {
namespace {

constexpr std::size_t kDsfBlockBytes = 4096;
constexpr std::size_t kHeldBytes = 16 * kDsfBlockBytes;  // of each channel, at a time
constexpr std::uint64_t kOneBitHeaderBytes = 2048;

class Fields {
 public:
  // Room for every header, so that only a long tag has to move it.
  explicit Fields(ByteOrder order) : order_(order) { bytes_.reserve(kOneBitHeaderBytes); }

  Fields& Text(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  Fields& Number(std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) {
      const int place = order_ == ByteOrder::kLittle ? i : width - 1 - i;
      bytes_.push_back(static_cast<std::uint8_t>(value >> 8 * place));
    }
    return *this;
  }
  Fields& Fill(std::uint8_t value, std::size_t until) {
    bytes_.resize(until, value);
    return *this;
  }
  std::vector<std::uint8_t> Take() { return std::move(bytes_); }

 private:
  ByteOrder order_;
  std::vector<std::uint8_t> bytes_;
};

std::uint64_t Bcd(std::uint64_t value) { return value / 10 % 10 * 16 + value % 10; }

}  // namespace

std::uint32_t MostChannels(ContainerKind kind) {
  return kind == kDsf ? 6 : kind == kUnknown ? 0 : kMaxChannels;
}

SoundWriter::SoundWriter(ByteSink& sink, const SoundFormat& format, const ContainerTags& tags)
    : sink_(sink),
      format_(format),
      tags_(tags),
      layout_{format.channels, format.kind == kDsf ? kDsfBlockBytes : 1},
      lsb_first_(format.kind == kDsf),
      buffer_(kHeldBytes * format.channels) {
  if (format_.speakers == 0) format_.speakers = UsualSpeakers(format.channels);
}

bool SoundWriter::Start() { return IsKnown() || WriteHeader(0, 0); }

bool SoundWriter::WriteHeader(std::uint64_t samples, std::uint64_t tag_bytes) {
  const std::vector<std::uint8_t> header = Header(samples, tag_bytes);
  offset_ = std::max<std::uint64_t>(offset_, header.size());
  return sink_.Write(0, header.data(), header.size());
}

std::uint64_t SoundWriter::room() const {
  if (!IsKnown()) return UINT64_MAX;
  return WholeBlocks(AllChannelBytes()) - channel_bytes_;
}

std::uint8_t& SoundWriter::Held(std::size_t channel, std::size_t byte) {
  return buffer_[static_cast<std::size_t>(layout_.Offset(channel, byte))];
}

bool SoundWriter::Write(const std::uint8_t* const* in, std::size_t stride, std::size_t bytes,
                        bool lsb_first) {
  if (bytes > room()) return false;
  if (offset_ == 0 && !WriteHeader(format_.samples, TagBytes().size())) return false;
  for (std::size_t done = 0; done < bytes;) {
    // Only now, so that the last byte stays at hand until it is known to be the last.
    if (held_ == kHeldBytes && !Flush(held_)) return false;
    const auto run = static_cast<std::size_t>(
        std::min<std::uint64_t>(std::min(bytes - done, kHeldBytes - held_), layout_.Run(held_)));
    for (std::size_t c = 0; c < format_.channels; ++c) {
      CopyBytes(in[c] + done * stride, stride, &Held(c, held_), layout_.Stride(), run,
                lsb_first != lsb_first_);
    }
    held_ += run;
    channel_bytes_ += run;
    done += run;
  }
  return true;
}

bool SoundWriter::Flush(std::size_t bytes) {
  const std::size_t size = bytes * format_.channels;
  if (size > 0 && !sink_.Write(offset_, buffer_.data(), size)) return false;
  offset_ += size;
  held_ = 0;
  return true;
}

bool SoundWriter::Finish(std::uint64_t samples, bool goes_on) {
  const auto whole = static_cast<std::size_t>(WholeBlocks(held_));
  for (std::size_t c = 0; c < format_.channels && held_ > 0; ++c) {
    if (!goes_on) SilenceBehind(samples, lsb_first_, Held(c, held_ - 1));
    // Zeros, as DSF asks for: the number of samples keeps them from being heard.
    for (std::size_t i = held_; i < whole; ++i) Held(c, i) = 0;
  }
  if (!Flush(whole)) return false;

  std::vector<std::uint8_t> end = TagBytes();
  const std::size_t tag_bytes = end.size();
  if (format_.kind == kDsdiff && SoundBytes() % 2 != 0) end.insert(end.begin(), 0);
  if (!end.empty() && !sink_.Write(offset_, end.data(), end.size())) return false;
  return IsKnown() || WriteHeader(samples, tag_bytes);
}

// None for kOneBit.
std::vector<std::uint8_t> SoundWriter::TagBytes() const {
  if (format_.kind == kDsf) return tags_.id3;
  return format_.kind == kDsdiff ? DsdiffTagChunks(tags_) : std::vector<std::uint8_t>();
}

// Of each channel in the end, as far as that is known.
std::uint64_t SoundWriter::AllChannelBytes() const {
  return IsKnown() ? BytesOf(format_.samples) : channel_bytes_;
}

std::uint64_t SoundWriter::WholeBlocks(std::uint64_t bytes) const {
  return (bytes + layout_.block - 1) / layout_.block * layout_.block;
}

// Padding included.
std::uint64_t SoundWriter::SoundBytes() const {
  return WholeBlocks(AllChannelBytes()) * format_.channels;
}

std::vector<std::uint8_t> SoundWriter::Header(std::uint64_t samples,
                                              std::uint64_t tag_bytes) const {
  switch (format_.kind) {
    case kDsf:
      return DsfHeader(samples, tag_bytes);
    case kDsdiff:
      return DsdiffHeader(tag_bytes);
    default:
      return OneBitHeader();
  }
}

std::vector<std::uint8_t> SoundWriter::DsfHeader(std::uint64_t samples,
                                                 std::uint64_t tag_bytes) const {
  constexpr std::uint64_t kSoundOffset = 92;
  const std::uint64_t end = kSoundOffset + SoundBytes();
  Fields out(ByteOrder::kLittle);
  out.Text("DSD ").Number(28, 8).Number(end + tag_bytes, 8).Number(tag_bytes != 0 ? end : 0, 8);
  out.Text("fmt ").Number(52, 8).Number(1, 4).Number(0, 4);
  out.Number(DsfTypeOf(format_.speakers, format_.channels), 4).Number(format_.channels, 4);
  out.Number(format_.rate_hz, 4).Number(1, 4).Number(samples, 8).Number(kDsfBlockBytes, 4);
  out.Number(0, 4);
  out.Text("data").Number(12 + SoundBytes(), 8);
  return out.Take();
}

std::vector<std::uint8_t> SoundWriter::DsdiffHeader(std::uint64_t tag_bytes) const {
  const std::string names = DsdiffNames(format_.speakers, format_.channels);
  Fields properties(ByteOrder::kBig);
  properties.Text("SND ");
  properties.Text("FS  ").Number(4, 8).Number(format_.rate_hz, 4);
  properties.Text("CHNL").Number(2 + names.size(), 8).Number(format_.channels, 2).Text(names);
  // The zero byte counts, as in most files: the size is even with and without it in mind.
  properties.Text("CMPR").Number(20, 8).Text("DSD ").Number(14, 1);
  properties.Text("not compressed").Number(0, 1);
  const std::vector<std::uint8_t> body = properties.Take();
  const std::uint64_t sound = SoundBytes();
  Fields out(ByteOrder::kBig);
  out.Text("FRM8").Number(4 + 16 + 12 + body.size() + 12 + sound + sound % 2 + tag_bytes, 8);
  out.Text("DSD ").Text("FVER").Number(4, 8).Number(0x01050000, 4);
  out.Text("PROP").Number(body.size(), 8);
  out.Text({reinterpret_cast<const char*>(body.data()), body.size()});
  out.Text("DSD ").Number(sound, 8);
  return out.Take();
}

std::vector<std::uint8_t> SoundWriter::OneBitHeader() const {
  const std::uint64_t end = kOneBitHeaderBytes + SoundBytes();
  const std::uint64_t seconds = (AllChannelBytes() * 8 + format_.rate_hz - 1) / format_.rate_hz;
  Fields out(ByteOrder::kBig);
  out.Text("1bit").Number(0, 4).Number(0x10000000, 4);
  out.Number(end & 0xffffffff, 4).Number(end >> 32, 4);  // the low word first
  out.Number(128, 4).Number(kOneBitHeaderBytes, 4).Number(0, 4);
  out.Number(Bcd(seconds / 3600), 1).Number(Bcd(seconds / 60 % 60), 1).Number(Bcd(seconds % 60), 1);
  out.Number(0, 1).Number(format_.rate_hz, 4).Number(0, 4);
  out.Number(format_.channels, 1).Number(0, 3);
  out.Number(format_.channels == 1 ? 0x40 : 0x44, 1);
  return out.Fill(0, 128).Fill(' ', kOneBitHeaderBytes).Take();
}

}  // namespace corvin::formats
