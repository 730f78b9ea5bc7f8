// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Reads ID3v2.3 blocks. Frame sizes are never taken at their word: a frame ends with the block at
// the latest, and what is malformed inside a frame loses that frame only.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <vector>

#include "corvin.h"
#include "formats/bytes/byte_order.h"
#include "formats/bytes/chunk_id.h"
#include "formats/tags/id3_block.h"
#include "formats/tags/tag_text.h"

extern "C" {
bool bFindCommentTag = false;
const char CommentLanguage[4] = "jpn";
}

namespace corvin::formats {
namespace {

constexpr std::size_t kFrameHeaderBytes = 10;
constexpr int kNoTag = 1;
constexpr int kFailed = -1;

/// Reads `size` bytes; false when the stream ends before. The header may state 256 MiB in a file of
/// a few bytes, so memory is taken as bytes arrive.
bool ReadBlock(std::FILE* stream, std::size_t size, std::vector<std::uint8_t>& block) {
  constexpr std::size_t kFirstPiece = 65536;
  while (block.size() < size) {
    const std::size_t have = block.size();
    const std::size_t piece = std::min(size - have, std::max(have, kFirstPiece));
    block.resize(have + piece);
    if (std::fread(block.data() + have, 1, piece, stream) != piece) return false;
  }
  return true;
}

/// One read of one block into one record.
class FrameReader {
 public:
  explicit FrameReader(DSD_TAG& tag) : tag_(tag) { SetCommentFound(false); }

  /// False when memory runs out.
  bool Read(const ChunkId& id, ByteSpan body) {
    if (id == MakeChunkId("APIC")) return ReadPicture(body);
    if (id == MakeChunkId("COMM")) {
      ReadComment(body);
    } else if (id == MakeChunkId("TYER")) {
      std::array<char, CORVIN_TAG_TEXT_BYTES + 1> text{};
      if (ReadText(body, std::span(text).first<CORVIN_TAG_TEXT_BYTES>())) SetYear(text.data());
    } else if (char* field = FieldOf(id)) {
      ReadText(body, {field, CORVIN_TAG_TEXT_BYTES});
    }
    return true;
  }

 private:
  char* FieldOf(const ChunkId& id) {
    if (id == MakeChunkId("TIT2")) return tag_.title;
    if (id == MakeChunkId("TPE1")) return tag_.artist;
    if (id == MakeChunkId("TALB")) return tag_.album;
    if (id == MakeChunkId("TRCK")) return tag_.track;
    if (id == MakeChunkId("TCON")) return tag_.genre;
    if (id == MakeChunkId("TCOM")) return tag_.composer;
    if (id == MakeChunkId("TCOP")) return tag_.rightsNotice;
    return nullptr;
  }

  static std::optional<TextEncoding> TakeEncoding(ByteSpan& body) {
    if (body.empty() || !IsTextEncoding(body[0])) return std::nullopt;
    const auto encoding = static_cast<TextEncoding>(body[0]);
    body = body.subspan(1);
    return encoding;
  }

  static bool ReadText(ByteSpan body, std::span<char> field) {
    const auto encoding = TakeEncoding(body);
    if (encoding) StoreText(*encoding, body, field);
    return encoding.has_value();
  }

  void SetYear(const char* text) {
    constexpr long kLargest = INT32_MAX;
    tag_.year = static_cast<std::int32_t>(
        std::clamp(std::strtol(text, nullptr, 10), -kLargest - 1, kLargest));
  }

  void ReadComment(ByteSpan body) {
    const auto encoding = TakeEncoding(body);
    if (comment_found_ || !encoding || body.size() < 3) return;
    if (std::memcmp(body.data(), CommentLanguage, 3) != 0) return;
    body = body.subspan(3);
    if (!TakeTerminatedText(*encoding, body)) return;  // the description
    StoreText(*encoding, body, tag_.comment);
    SetCommentFound(true);
  }

  bool ReadPicture(ByteSpan body) {
    const auto encoding = TakeEncoding(body);
    if (!encoding || (pictures_replaced_ && tag_.pictureCount == CORVIN_TAG_MAX_PICTURES)) {
      return true;
    }
    const auto mime = TakeTerminatedText(TextEncoding::kLatin1, body);
    if (!mime || body.empty()) return true;
    const std::uint8_t type = body[0];
    body = body.subspan(1);
    const auto description = TakeTerminatedText(*encoding, body);
    if (!description) return true;
    // A block holds less than 2^28 bytes.
    DSD_PICTURE* picture = tag_.PictureAlloc(1, static_cast<int>(body.size()), pictures_replaced_);
    if (picture == nullptr) return false;
    pictures_replaced_ = true;
    // Both keep their last byte zero.
    StoreText(TextEncoding::kLatin1, *mime, std::span(picture->mime).first<31>());
    StoreText(*encoding, *description, std::span(picture->description).first<511>());
    picture->pictureType = type;
    std::copy(body.begin(), body.end(), picture->data);
    return true;
  }

  void SetCommentFound(bool found) {
    comment_found_ = found;
    __atomic_store_n(&bFindCommentTag, found, __ATOMIC_RELAXED);
  }

  DSD_TAG& tag_;
  bool comment_found_ = false;
  bool pictures_replaced_ = false;  // those that the record held before the read
};

bool IsFrameId(ByteSpan id) {
  return std::all_of(id.begin(), id.end(), [](std::uint8_t c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
  });
}

}  // namespace

int ReadId3Frames(ByteSpan block, DSD_TAG& tag) {
  FrameReader reader(tag);
  int result = kNoTag;
  // Padding ends the walk by having no identifier.
  while (block.size() >= kFrameHeaderBytes && IsFrameId(block.first(4))) {
    const ChunkId id{block[0], block[1], block[2], block[3]};
    const auto size = Load<std::uint32_t>(ByteOrder::kBig, &block[4]);
    block = block.subspan(kFrameHeaderBytes);
    // A size beyond the block, negative ones as signed numbers among them, ends the walk there.
    const std::size_t body = std::min<std::size_t>(size, block.size());
    if (!reader.Read(id, block.first(body))) return kFailed;
    result = 0;
    block = block.subspan(body);
  }
  return result;
}

namespace {

int ReadTag(std::FILE* stream, DSD_TAG& tag) {
  std::array<std::uint8_t, 5> start;
  if (std::fread(start.data(), 1, start.size(), stream) != start.size()) return kFailed;
  constexpr std::uint8_t kMajorVersion = 3;
  if (std::memcmp(start.data(), "ID3", 3) != 0 || start[3] != kMajorVersion) return kNoTag;
  // Flags, which are ignored, and the size in groups of seven bits.
  std::array<std::uint8_t, 5> rest;
  if (std::fread(rest.data(), 1, rest.size(), stream) != rest.size()) return kFailed;
  std::size_t size = 0;
  for (int i = 1; i < 5; ++i) size = size << 7 | (rest[i] & 0x7f);
  if (size == 0) return kNoTag;
  std::vector<std::uint8_t> block;
  if (!ReadBlock(stream, size, block)) return kFailed;
  return ReadId3Frames(block, tag);
}

}  // namespace
}  // namespace corvin::formats

extern "C" int Read_id3tag_v2(FILE* stream, DSD_TAG* tag) {
  if (stream == nullptr || tag == nullptr) return corvin::formats::kFailed;
  try {
    return corvin::formats::ReadTag(stream, *tag);
  } catch (const std::bad_alloc&) {
    return corvin::formats::kFailed;
  }
}
