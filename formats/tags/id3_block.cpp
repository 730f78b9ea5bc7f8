// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/id3_block.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

#include "formats/bytes/byte_order.h"
#include "formats/bytes/chunk_id.h"

namespace corvin::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFrameHeaderBytes = 10;

// Four groups of seven bits.
std::uint32_t SevenBitSize(const std::uint8_t* bytes) {
  std::uint32_t size = 0;
  for (int i = 0; i < 4; ++i) size = size << 7 | (bytes[i] & 0x7fu);
  return size;
}

// Takes back the zero byte that was put behind each 0xff.
Bytes Resynchronised(ByteSpan bytes) {
  Bytes plain;
  plain.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    plain.push_back(bytes[i]);
    if (bytes[i] == 0xff && i + 1 < bytes.size() && bytes[i + 1] == 0) ++i;
  }
  return plain;
}

void Put(Bytes& frames, const ChunkId& id, ByteSpan body) {
  frames.insert(frames.end(), id.begin(), id.end());
  for (int shift = 24; shift >= 0; shift -= 8) {
    frames.push_back(static_cast<std::uint8_t>(body.size() >> shift));
  }
  frames.insert(frames.end(), 2, 0);
  frames.insert(frames.end(), body.begin(), body.end());
}

// What stands in a frame of version 2.4, without the additions that its flags announce. Nothing
// for compressed and encrypted frames.
std::optional<ByteSpan> UnwrappedBody(std::uint8_t flags, ByteSpan body, Bytes& storage) {
  constexpr std::uint8_t kGrouped = 0x40;
  constexpr std::uint8_t kCompressed = 0x08;
  constexpr std::uint8_t kEncrypted = 0x04;
  constexpr std::uint8_t kUnsynchronised = 0x02;
  constexpr std::uint8_t kLengthStated = 0x01;
  if ((flags & (kCompressed | kEncrypted)) != 0) return std::nullopt;
  const std::size_t extra =
      ((flags & kGrouped) != 0 ? 1u : 0u) + ((flags & kLengthStated) != 0 ? 4u : 0u);
  if (body.size() < extra) return std::nullopt;
  body = body.subspan(extra);
  if ((flags & kUnsynchronised) == 0) return body;
  storage = Resynchronised(body);
  return ByteSpan(storage);
}

// Gathers frames in the plain form.
class PlainFrames {
 public:
  void Add(ChunkId id, ByteSpan body) {
    if (id == MakeChunkId("COMM")) return KeepComment(body);
    if (id == MakeChunkId("TDRC")) id = MakeChunkId("TYER");  // begins with the year
    Put(frames_, id, body);
  }

  Bytes Finish() {
    if (!comment_.empty()) Put(frames_, MakeChunkId("COMM"), comment_);
    return std::move(frames_);
  }

 private:
  void KeepComment(ByteSpan body) {
    if (body.size() < 5 || !IsTextEncoding(body[0])) return;
    ByteSpan rest = body.subspan(4);
    const auto description = TakeTerminatedText(static_cast<TextEncoding>(body[0]), rest);
    if (!description) return;
    // UTF-16 has its mark even when it is empty.
    const bool is_plain = description->size() <= 2;
    if (!comment_.empty() && (!is_plain || comment_is_plain_)) return;
    comment_.assign(body.begin(), body.end());
    std::memcpy(&comment_[1], CommentLanguage, 3);
    comment_is_plain_ = is_plain;
  }

  Bytes frames_;
  Bytes comment_;
  bool comment_is_plain_ = false;
};

}  // namespace

std::uint64_t Id3BlockBytes(ByteSpan header) {
  if (header.size() < kId3HeaderBytes || std::memcmp(header.data(), "ID3", 3) != 0) return 0;
  constexpr std::uint8_t kFooter = 0x10;
  const std::uint64_t footer = (header[5] & kFooter) != 0 ? kId3HeaderBytes : 0;
  return kId3HeaderBytes + SevenBitSize(&header[6]) + footer;
}

bool ReadId3Block(ByteSpan block, DSD_TAG& tag) {
  if (Id3BlockBytes(block) == 0) return false;
  const int version = block[3];
  if (version != 3 && version != 4) return false;
  const std::uint8_t flags = block[5];
  const std::size_t size = SevenBitSize(&block[6]);
  block = block.subspan(kId3HeaderBytes);
  block = block.first(std::min(size, block.size()));
  Bytes storage;
  constexpr std::uint8_t kUnsynchronised = 0x80;
  constexpr std::uint8_t kExtended = 0x40;
  if (version == 3 && (flags & kUnsynchronised) != 0) {
    storage = Resynchronised(block);
    block = storage;
  }
  if ((flags & kExtended) != 0 && block.size() >= 4) {
    const std::size_t extended =
        version == 4 ? SevenBitSize(block.data())
                     : std::size_t{4} + Load<std::uint32_t>(ByteOrder::kBig, block.data());
    block = block.subspan(std::min(extended, block.size()));
  }
  PlainFrames frames;
  while (block.size() >= kFrameHeaderBytes && block[0] != 0) {
    const ChunkId id{block[0], block[1], block[2], block[3]};
    const std::size_t stated =
        version == 4 ? SevenBitSize(&block[4]) : Load<std::uint32_t>(ByteOrder::kBig, &block[4]);
    const std::uint8_t format = block[9];
    block = block.subspan(kFrameHeaderBytes);
    const ByteSpan body = block.first(std::min(stated, block.size()));
    block = block.subspan(body.size());
    constexpr std::uint8_t kPackedIn23 = 0xc0;  // compressed or encrypted
    Bytes unwrapped;
    if (version == 3) {
      if ((format & kPackedIn23) == 0) frames.Add(id, body);
    } else if (const auto plain = UnwrappedBody(format, body, unwrapped)) {
      frames.Add(id, *plain);
    }
  }
  const int result = ReadId3Frames(frames.Finish(), tag);
  if (result < 0) throw std::bad_alloc();
  return result == 0;
}

}  // namespace corvin::formats
