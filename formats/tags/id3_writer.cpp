// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writes ID3v2.3 blocks: one pass measures, one fills the block, one call writes it. The texts
// carry the encoding byte of UTF-8, which the announced version does not know: players read it, and
// a tag of version 2.4 would be lost on our own reader.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corvin.h"
#include "formats/tags/id3_block.h"

namespace {

constexpr std::size_t kHeaderBytes = 10;
constexpr std::uint8_t kUtf8 = 3;
constexpr std::uint64_t kLargestSize = (1u << 28) - 1;  // four times seven bits

/// Where the bytes of a block go: nowhere while measuring.
class Sink {
 public:
  explicit Sink(std::uint8_t* to = nullptr) : to_(to) {}

  void Put(const void* bytes, std::size_t count) {
    if (to_ != nullptr && count > 0) std::memcpy(to_ + size_, bytes, count);
    size_ += count;
  }
  void Put(std::string_view bytes) { Put(bytes.data(), bytes.size()); }
  void PutByte(std::uint8_t byte) { Put(&byte, 1); }
  void PutFrameHeader(const char* id, std::size_t size) {
    Put(id, 4);
    for (int shift = 24; shift >= 0; shift -= 8) PutByte(static_cast<std::uint8_t>(size >> shift));
    Put(std::string_view("\0\0", 2));
  }
  std::uint64_t size() const { return size_; }

 private:
  std::uint8_t* to_;
  std::uint64_t size_ = 0;  // pictures of 2 GiB each add up beyond 32 bits
};

/// The text of a field, which has no terminator when it is full.
template <std::size_t N>
std::string_view TextOf(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

void PutText(Sink& sink, const char* id, std::string_view text) {
  if (text.empty()) return;
  sink.PutFrameHeader(id, text.size() + 1);
  sink.PutByte(kUtf8);
  sink.Put(text);
}

void PutComment(Sink& sink, std::string_view text) {
  if (text.empty()) return;
  sink.PutFrameHeader("COMM", text.size() + 5);
  sink.PutByte(kUtf8);
  sink.Put(CommentLanguage, 3);
  sink.PutByte(0);  // an empty description
  sink.Put(text);
}

void PutPicture(Sink& sink, const DSD_PICTURE& picture) {
  if (picture.dataSize < 1 || picture.data == nullptr) return;
  const std::string_view mime = TextOf(picture.mime);
  const std::string_view description = TextOf(picture.description);
  const auto data_bytes = static_cast<std::size_t>(picture.dataSize);
  sink.PutFrameHeader("APIC", mime.size() + description.size() + data_bytes + 4);
  sink.PutByte(kUtf8);
  sink.Put(mime);
  sink.PutByte(0);
  sink.PutByte(picture.pictureType);
  sink.Put(description);
  sink.PutByte(0);
  sink.Put(picture.data, data_bytes);
}

void PutFrames(Sink& sink, const DSD_TAG& tag) {
  PutText(sink, "TIT2", TextOf(tag.title));
  PutText(sink, "TPE1", TextOf(tag.artist));
  PutText(sink, "TALB", TextOf(tag.album));
  if (tag.year != 0) PutText(sink, "TYER", std::to_string(tag.year));
  PutComment(sink, TextOf(tag.comment));
  PutText(sink, "TRCK", TextOf(tag.track));
  PutText(sink, "TCON", TextOf(tag.genre));
  PutText(sink, "TCOM", TextOf(tag.composer));
  PutText(sink, "TCOP", TextOf(tag.rightsNotice));
  if (tag.pictures == nullptr) return;
  for (int i = 0; i < tag.pictureCount; ++i) {
    if (tag.pictures[i] != nullptr) PutPicture(sink, *tag.pictures[i]);
  }
}

/// The header in front of `size` bytes of frames.
void PutHeader(Sink& sink, std::size_t size) {
  sink.Put(std::string_view("ID3\3\0\0", 6));
  for (int shift = 21; shift >= 0; shift -= 7) {
    sink.PutByte(static_cast<std::uint8_t>(size >> shift & 0x7f));
  }
}

std::uint64_t FramesSize(const DSD_TAG& tag) {
  Sink measure;
  PutFrames(measure, tag);
  return measure.size();
}

}  // namespace

namespace corvin::formats {

std::vector<std::uint8_t> MakeId3Block(const DSD_TAG& tag) {
  const std::uint64_t frames_size = FramesSize(tag);
  if (frames_size == 0 || frames_size > kLargestSize) return {};
  const auto size = static_cast<std::size_t>(frames_size);
  std::vector<std::uint8_t> block(kHeaderBytes + size);
  Sink sink(block.data());
  PutHeader(sink, size);
  PutFrames(sink, tag);
  return block;
}

}  // namespace corvin::formats

extern "C" {

int id3tag_write_v2(FILE* stream, const DSD_TAG* tag) {
  if (stream == nullptr || tag == nullptr) return -1;
  const std::uint64_t frames_size = FramesSize(*tag);
  if (frames_size > kLargestSize) return -1;
  const auto size = static_cast<std::size_t>(frames_size);
  const std::unique_ptr<std::uint8_t, void (*)(void*)> block(
      static_cast<std::uint8_t*>(std::malloc(kHeaderBytes + size)), std::free);
  if (!block) return -1;
  Sink sink(block.get());
  PutHeader(sink, size);
  PutFrames(sink, *tag);
  return static_cast<int>(std::fwrite(block.get(), 1, kHeaderBytes + size, stream));
}

int Write_id3tag_v2(FILE* stream, const DSD_TAG* tag) { return id3tag_write_v2(stream, tag); }

}  // extern "C"
