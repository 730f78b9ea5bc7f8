// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_tag_saving.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/files/chunks.h"
#include "cli/files/descriptor_bytes.h"
#include "cli/files/flac_tags.h"
#include "cli/files/output_file.h"
#include "cli/files/tag_bytes.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

// A file open for reading.
class Source {
 public:
  explicit Source(const std::string& path)
      : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat status;
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) throw unreadable();
    bytes_ = static_cast<uint64_t>(status.st_size);
  }
  ~Source() { close(descriptor_); }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  int descriptor() const { return descriptor_; }
  uint64_t bytes() const { return bytes_; }

  /** The bytes at an offset as text, fewer at the end of the file. */
  std::string text(uint64_t offset, size_t bytes) const {
    std::string text(bytes, '\0');
    const int64_t got = read_at(descriptor_, offset, std::as_writable_bytes(std::span(text)));
    text.resize(static_cast<size_t>(std::max<int64_t>(0, got)));
    return text;
  }

  /** Appends bytes of it to `to`, whose place is at `end`. */
  void copy(uint64_t offset, uint64_t bytes, const OutputFile& to, uint64_t& end) const {
    std::vector<std::byte> buffer(1 << 18);
    while (bytes > 0) {
      const auto part =
          std::span(buffer).first(static_cast<size_t>(std::min<uint64_t>(bytes, buffer.size())));
      if (read_at(descriptor_, offset, part) != static_cast<int64_t>(part.size()))
        throw unreadable();
      if (!write_at(to.descriptor(), end, part))
        throw Failure(kWriteError, path_, std::strerror(errno));
      offset += part.size();
      end += part.size();
      bytes -= part.size();
    }
  }

 private:
  Failure unreadable() const {
    return {kBadInput, path_, errno != 0 ? std::strerror(errno) : "cannot be read"};
  }

  std::string path_;
  int descriptor_;
  uint64_t bytes_ = 0;
};

uint32_t little_endian(std::string_view bytes) {
  uint32_t number = 0;
  for (size_t i = 4; i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[i]);
  return number;
}

// What an ID3v2 block takes that stands before a file of another kind.
uint64_t leading_id3_bytes(const Source& file) {
  const std::string head = file.text(0, 10);
  if (head.size() < 10 || !head.starts_with("ID3")) return 0;
  uint64_t bytes = 0;
  for (size_t i = 6; i < 10; ++i) bytes = bytes << 7 | (static_cast<uint8_t>(head[i]) & 0x7f);
  return bytes + 10;
}

bool holds_tags(const Source& file, const Chunk& chunk) {
  if (chunk.id == "id3 " || chunk.id == "ID3 ") return true;
  return chunk.id == "LIST" && file.text(chunk.offset, 4) == "INFO";
}

// What AIFF has for a few texts is in the block as well, or was removed.
bool holds_text(const Chunk& chunk) {
  return chunk.id == "NAME" || chunk.id == "AUTH" || chunk.id == "(c) " || chunk.id == "ANNO";
}

void save_chunks(const Source& from, const std::string& path, const OutputFile& to,
                 std::span<const std::byte> tags) {
  const auto chunks = chunks_of(from.descriptor());
  const bool is_whole = chunks && !chunks->all.empty() &&
                        std::all_of(chunks->all.begin(), chunks->all.end(),
                                    [](const Chunk& chunk) { return chunk.bytes == chunk.stated; });
  if (!is_whole)
    throw Failure(kBadInput, path, "has chunks that do not add up, and cannot be given tags");
  uint64_t end = 0;
  from.copy(0, 12, to, end);
  for (const Chunk& chunk : chunks->all) {
    if (holds_tags(from, chunk) || (chunks->is_big_endian && holds_text(chunk))) continue;
    const uint64_t padding = chunk.bytes % 2;
    from.copy(chunk.offset - 8, 8 + chunk.bytes, to, end);
    constexpr std::array<std::byte, 1> kZero{};
    if (padding != 0 && !write_at(to.descriptor(), end++, kZero))
      throw Failure(kWriteError, path, std::strerror(errno));
  }
  if (!chunks->is_long && end + tags.size() > UINT32_MAX)
    throw Failure(kBadInput, path, "would be larger than the 4 GiB that such a file can hold");
  if (!write_at(to.descriptor(), end, tags) ||
      !state_form_bytes(to.descriptor(), *chunks, end + tags.size() - 8))
    throw Failure(kWriteError, path, std::strerror(errno));
}

// Where the tags at the end of a WavPack file begin.
uint64_t sound_end(const Source& file) {
  constexpr uint64_t kId3v1Bytes = 128;
  constexpr uint64_t kEndBytes = 32;
  uint64_t end = file.bytes();
  if (end >= kId3v1Bytes && file.text(end - kId3v1Bytes, 3) == "TAG") end -= kId3v1Bytes;
  if (end < kEndBytes) return end;
  const std::string footer = file.text(end - kEndBytes, kEndBytes);
  if (footer.size() != kEndBytes || !footer.starts_with("APETAGEX")) return end;
  constexpr uint32_t kHasHeader = 0x80000000;
  const bool has_header = (little_endian(std::string_view(footer).substr(20)) & kHasHeader) != 0;
  const uint64_t bytes =
      little_endian(std::string_view(footer).substr(12)) + (has_header ? kEndBytes : 0);
  return bytes <= end ? end - bytes : end;
}

void save_behind(const Source& from, const std::string& path, const OutputFile& to,
                 std::span<const std::byte> tags) {
  uint64_t end = 0;
  from.copy(0, sound_end(from), to, end);
  if (!write_at(to.descriptor(), end, tags)) throw Failure(kWriteError, path, std::strerror(errno));
}

void save_blocks(const Source& from, const std::string& path, const OutputFile& to,
                 const TagSet& tags) {
  // A block of another kind before the file's own would bring back what is removed.
  uint64_t place = leading_id3_bytes(from) + 4;
  std::vector<RawFlacBlock> blocks;
  for (bool is_last = false; !is_last;) {
    const std::string head = from.text(place, 4);
    size_t bytes = 0;
    for (size_t i = 1; i < head.size(); ++i) bytes = bytes << 8 | static_cast<uint8_t>(head[i]);
    std::string content = from.text(place + 4, bytes);
    if (head.size() < 4 || content.size() < bytes)
      throw Failure(kBadInput, path, "has metadata blocks that are cut short");
    const auto first = static_cast<uint8_t>(head[0]);
    is_last = (first & 0x80) != 0;
    blocks.push_back({static_cast<uint8_t>(first & 0x7f), std::move(content)});
    place += 4 + bytes;
  }
  blocks = with_tags(std::move(blocks), tags);
  std::string start = "fLaC";
  for (const RawFlacBlock& block : blocks) {
    const size_t bytes = block.content.size();
    constexpr size_t kMostBlockBytes = (1 << 24) - 1;
    if (bytes > kMostBlockBytes)
      throw Failure(kBadInput, path, "cannot hold texts of more than 16 MiB");
    start += static_cast<char>(block.type | (&block == &blocks.back() ? 0x80 : 0));
    for (int shift = 16; shift >= 0; shift -= 8) start += static_cast<char>(bytes >> shift);
    start += block.content;
  }
  if (!write_at(to.descriptor(), 0, std::as_bytes(std::span(start))))
    throw Failure(kWriteError, path, std::strerror(errno));
  uint64_t end = start.size();
  from.copy(place, from.bytes() - place, to, end);
}

}  // namespace

std::optional<PcmKind> taggable_kind(const std::string& path) {
  const Source file(path);
  if (const auto chunks = chunks_of(file.descriptor()))
    return chunks->is_big_endian ? PcmKind::kAiff
           : chunks->is_long     ? PcmKind::kRf64
                                 : PcmKind::kWav;
  const std::string start = file.text(leading_id3_bytes(file), 4);
  if (start == "fLaC") return PcmKind::kFlac;
  if (start == "wvpk") return PcmKind::kWavPack;
  return {};
}

void save_pcm_tags(const std::string& path, PcmKind kind, const TagSet& tags,
                   corvin_id3_form form) {
  const Source from(path);
  const std::vector<std::byte> bytes = tag_bytes(kind, tags, form);
  OutputFile to({.path = path, .input_path = "", .overwrite = true, .force = true});
  if (kind == PcmKind::kFlac)
    save_blocks(from, path, to, tags);
  else if (kind == PcmKind::kWavPack)
    save_behind(from, path, to, bytes);
  else
    save_chunks(from, path, to, bytes);
  if (fsync(to.descriptor()) != 0) throw Failure(kWriteError, path, std::strerror(errno));
  to.commit();
}

}  // namespace corvin::cli
