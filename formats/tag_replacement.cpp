// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Unlike reading, this trusts no repair: a file whose sizes do not add up is not rewritten, for
// what was guessed would be made to stand.

#include "formats/tag_replacement.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "formats/bytes/byte_order.h"
#include "formats/chunk_cursor.h"

namespace corvin::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kCopyBytes = 1 << 20;
constexpr std::uint64_t kMostInMemory = 16 << 20;  // of the chunks that are taken apart

/// A new file from parts of an old one and from bytes of one's own.
class Assembly {
 public:
  explicit Assembly(ByteSource& source) : source_(source) {}

  void Copy(std::uint64_t offset, std::uint64_t bytes) {
    if (bytes > 0) parts_.push_back({{offset, bytes}, {}});
    size_ += bytes;
  }
  void Put(Bytes bytes) {
    size_ += bytes.size();
    if (!bytes.empty()) parts_.push_back({{}, std::move(bytes)});
  }
  std::uint64_t size() const { return size_; }

  /// Writes `front`, which replaces as many bytes of the first part, and everything behind it.
  Replaced Write(const Bytes& front, ByteSink& sink) const {
    std::uint64_t place = 0;
    Bytes buffer(kCopyBytes);
    for (const Part& part : parts_) {
      if (!part.own.empty()) {
        if (!sink.Write(place, part.own.data(), part.own.size())) return Replaced::kWriteFailed;
        place += part.own.size();
      }
      for (std::uint64_t done = 0; done < part.old.bytes;) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), part.old.bytes - done));
        if (source_.Read(part.old.offset + done, buffer.data(), count) != count) {
          return Replaced::kReadFailed;
        }
        if (!sink.Write(place, buffer.data(), count)) return Replaced::kWriteFailed;
        done += count;
        place += count;
      }
    }
    return sink.Write(0, front.data(), front.size()) ? Replaced::kYes : Replaced::kWriteFailed;
  }

 private:
  struct Part {
    ByteRange old;
    Bytes own;
  };
  ByteSource& source_;
  std::vector<Part> parts_;
  std::uint64_t size_ = 0;
};

void PutNumber(Bytes& to, std::uint64_t value, int width, ByteOrder order = ByteOrder::kBig) {
  for (int i = 0; i < width; ++i) {
    const int place = order == ByteOrder::kLittle ? i : width - 1 - i;
    to.push_back(static_cast<std::uint8_t>(value >> 8 * place));
  }
}

Bytes ChunkStart(const char* id, std::uint64_t size) {
  Bytes start(id, id + 4);
  PutNumber(start, size, 8);
  return start;
}

// ---- DSF --------------------------------------------------------------------------------------

Replaced ReplaceInDsf(ByteSource& source, const SoundFile& file, const ContainerTags& tags,
                      ByteSink& sink) {
  const std::uint64_t sound_end = file.sound.offset + file.sound.bytes;
  // The old tag goes when it is the last thing in the file; elsewhere nothing points to it any
  // more.
  std::uint64_t end = source.Size();
  if (!file.id3.empty() && file.id3[0].offset >= sound_end &&
      file.id3[0].offset + file.id3[0].bytes == end) {
    end = file.id3[0].offset;
  }
  Assembly assembly(source);
  assembly.Copy(0, end);
  assembly.Put(tags.id3);
  Bytes front = {'D', 'S', 'D', ' '};
  PutNumber(front, 28, 8, ByteOrder::kLittle);
  PutNumber(front, assembly.size(), 8, ByteOrder::kLittle);
  PutNumber(front, tags.id3.empty() ? 0 : end, 8, ByteOrder::kLittle);
  return assembly.Write(front, sink);
}

// ---- DSDIFF -----------------------------------------------------------------------------------

struct Chunk {
  ChunkId id{};
  std::uint64_t start = 0;
  std::uint64_t size = 0;  // stated
  std::uint64_t end = 0;   // padded
  std::uint64_t body() const { return start + kChunkHeaderBytes; }
};

// The chunks that fill [begin, end), each padded; nothing when they do not. The last pad byte may
// be missing at the end of the file.
std::optional<std::vector<Chunk>> ChunksOf(ByteSource& source, std::uint64_t begin,
                                           std::uint64_t end) {
  constexpr std::size_t kMost = 4096;
  ChunkCursor cursor(source, ByteOrder::kBig);
  std::vector<Chunk> chunks;
  while (begin < end) {
    ChunkHeader header;
    if (chunks.size() == kMost || end - begin < kChunkHeaderBytes || !cursor.SeekTo(begin) ||
        !cursor.ReadHeader(header) || header.size > end - begin - kChunkHeaderBytes) {
      return std::nullopt;
    }
    const std::uint64_t size = kChunkHeaderBytes + header.size;
    chunks.push_back({header.id, begin, header.size, std::min(begin + size + size % 2, end)});
    begin = chunks.back().end;
  }
  return chunks;
}

std::optional<Bytes> BodyOf(ByteSource& source, const Chunk& chunk) {
  if (chunk.size > kMostInMemory) return std::nullopt;
  Bytes body(static_cast<std::size_t>(chunk.size));
  if (source.Read(chunk.body(), body.data(), body.size()) != body.size()) return std::nullopt;
  return body;
}

class DsdiffReplacement {
 public:
  DsdiffReplacement(ByteSource& source, const ContainerTags& tags)
      : source_(source), tags_(tags), assembly_(source) {}

  Replaced Run(ByteSink& sink) {
    ChunkCursor cursor(source_, ByteOrder::kBig);
    ChunkHeader form;
    if (!cursor.ReadHeader(form)) return Replaced::kUnfit;
    const std::uint64_t left = source_.Size() - kChunkHeaderBytes;
    if (form.size < 4 || form.size > left || left - form.size > 1) return Replaced::kUnfit;
    constexpr std::uint64_t kFormStart = kChunkHeaderBytes + 4;
    const auto chunks = ChunksOf(source_, kFormStart, kChunkHeaderBytes + form.size);
    if (!chunks) return source_.failed() ? Replaced::kReadFailed : Replaced::kUnfit;
    assembly_.Copy(0, kFormStart);
    for (const Chunk& chunk : *chunks) {
      if (!Take(chunk)) return source_.failed() ? Replaced::kReadFailed : Replaced::kUnfit;
    }
    assembly_.Put(DsdiffTagChunks(tags_, master_));
    return assembly_.Write(ChunkStart("FRM8", assembly_.size() - kChunkHeaderBytes), sink);
  }

 private:
  // False when the chunk is not what it should be.
  bool Take(const Chunk& chunk) {
    if (chunk.id == MakeChunkId("ID3 ")) return true;
    if (chunk.id == MakeChunkId("PROP")) return TakeProperties(chunk);
    if (chunk.id == MakeChunkId("DIIN")) return TakeMaster(chunk);
    if (chunk.id == MakeChunkId("COMT") && !tags_.has_comment) return TakeComments(chunk);
    Copy(chunk);
    return true;
  }

  void Copy(const Chunk& chunk) {
    assembly_.Copy(chunk.start, chunk.end - chunk.start);
    if ((chunk.end - chunk.start) % 2 != 0) assembly_.Put({0});
  }

  bool TakeProperties(const Chunk& chunk) {
    if (chunk.size < 4) return false;
    const auto properties = ChunksOf(source_, chunk.body() + 4, chunk.body() + chunk.size);
    if (!properties) return false;
    std::uint64_t size = 4;
    for (const Chunk& property : *properties) {
      if (property.id != MakeChunkId("ID3 ")) size += property.end - property.start;
    }
    assembly_.Put(ChunkStart("PROP", size));
    assembly_.Copy(chunk.body(), 4);
    for (const Chunk& property : *properties) {
      if (property.id == MakeChunkId("ID3 ")) continue;
      assembly_.Copy(property.start, property.end - property.start);
    }
    if (size % 2 != 0) assembly_.Put({0});
    return true;
  }

  bool TakeMaster(const Chunk& chunk) {
    const auto parts = ChunksOf(source_, chunk.body(), chunk.body() + chunk.size);
    if (!parts || chunk.size > kMostInMemory) return false;
    for (const Chunk& part : *parts) {
      if (part.id == MakeChunkId("DIAR") || part.id == MakeChunkId("DITI")) continue;
      const std::size_t before = master_.size();
      const auto bytes = static_cast<std::size_t>(part.end - part.start);
      master_.resize(before + bytes + bytes % 2);
      if (source_.Read(part.start, &master_[before], bytes) != bytes) return false;
    }
    return true;
  }

  // Those on the whole file are what the tags tell.
  bool TakeComments(const Chunk& chunk) {
    const auto body = BodyOf(source_, chunk);
    if (!body || body->size() < 2) return false;
    const auto number = [&](std::size_t at, auto value) {
      return Load<decltype(value)>(ByteOrder::kBig, &(*body)[at]);
    };
    Bytes kept;
    std::uint64_t count = 0;
    std::size_t at = 2;
    for (int i = number(0, std::uint16_t{}); i > 0; --i) {
      constexpr std::size_t kStartBytes = 14;
      if (body->size() - at < kStartBytes) return false;
      const bool is_general = number(at + 6, std::uint32_t{}) == 0;  // type and reference
      const std::uint64_t text = number(at + 10, std::uint32_t{});
      if (text > body->size() - at - kStartBytes) return false;
      const std::size_t end =
          std::min(body->size(), at + kStartBytes + static_cast<std::size_t>(text + text % 2));
      if (!is_general) {
        ++count;
        kept.insert(kept.end(), body->begin() + static_cast<long>(at),
                    body->begin() + static_cast<long>(end));
        if (kept.size() % 2 != 0) kept.push_back(0);
      }
      at = end;
    }
    if (count == 0) return true;
    assembly_.Put(ChunkStart("COMT", 2 + kept.size()));
    Bytes numbered;
    PutNumber(numbered, count, 2);
    assembly_.Put(std::move(numbered));
    assembly_.Put(std::move(kept));
    return true;
  }

  ByteSource& source_;
  const ContainerTags& tags_;
  Assembly assembly_;
  Bytes master_;
};

}  // namespace

Replaced ReplaceTags(ByteSource& source, const SoundFile& file, const ContainerTags& tags,
                     ByteSink& sink) {
  if (file.kind == kDsdiff) return DsdiffReplacement(source, tags).Run(sink);
  if (file.kind != kDsf || file.sound.offset == 0) return Replaced::kUnfit;
  return ReplaceInDsf(source, file, tags, sink);
}

}  // namespace corvin::formats
