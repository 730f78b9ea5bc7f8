// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// DSF: a header of three chunks with fixed places, the sound in blocks, a tag that the header
// points to. The number of samples governs: sizes that contradict it are reported.

#include <algorithm>
#include <array>
#include <bit>
#include <string>

#include "formats/bytes/block_layout.h"
#include "formats/chunk_cursor.h"
#include "formats/sound_file.h"
#include "formats/speakers.h"
#include "formats/tags/id3_block.h"

namespace corvin::formats {
namespace {

constexpr std::uint64_t kFirstChunkBytes = 28;
constexpr std::uint64_t kFormatChunkBytes = 52;

class DsfWalk {
 public:
  DsfWalk(ByteSource& source, SoundFile& file)
      : source_(source), file_(file), cursor_(source, ByteOrder::kLittle) {}

  void Run() {
    file_.lsb_first = true;
    ChunkHeader first;
    if (!cursor_.ReadHeader(first) || !cursor_.Read(stated_bytes_) || !cursor_.Read(metadata_)) {
      return file_.Fail(Readable::kDamaged, "is damaged: its header is cut short");
    }
    if (first.size != kFirstChunkBytes) file_.Warn("the first chunk states a wrong size");
    NoteChunk(first, 0, kFirstChunkBytes - kChunkHeaderBytes);
    if (!file_.sequential) FindTag();  // which stands behind the sound
    FindChunks();
    if (!has_format_) return file_.Fail(Readable::kDamaged, "is damaged: it has no format chunk");
    if (!has_sound_) return file_.Fail(Readable::kDamaged, "is damaged: it has no sound chunk");
    if (!CheckFormat()) return;
    Measure();
  }

  // The sound and the tag have the places that the walk gave them in the end.
  void NoteEnds() {
    if (has_sound_ && file_.sound.bytes > 0) file_.chunks.back().content = file_.sound;
    for (const ByteRange& tag : file_.id3) {
      file_.chunks.push_back({.id = MakeChunkId("ID3 "),
                              .header_offset = tag.offset,
                              .content = tag,
                              .stated_bytes = tag.bytes});
    }
  }

  void CheckEnd() {
    if (file_.sequential) return;
    const std::uint64_t size = source_.Size();
    if (stated_bytes_ != size) {
      file_.Warn("the header states a file of " + std::to_string(stated_bytes_) +
                 " bytes; it has " + std::to_string(size));
    }
    if (!has_sound_) return;
    std::uint64_t end = file_.sound.offset + file_.sound.bytes;
    for (const ByteRange& tag : file_.id3) end = std::max(end, tag.offset + tag.bytes);
    if (end < size) {
      file_.Warn(std::to_string(size - end) + " bytes at the end belong to neither sound nor tag");
    }
  }

 private:
  void FindTag() {
    if (metadata_ == 0) return;
    std::array<std::uint8_t, kId3HeaderBytes> header;
    const bool is_there = metadata_ < source_.Size() &&
                          source_.Read(metadata_, header.data(), header.size()) == header.size();
    const std::uint64_t bytes = is_there ? Id3BlockBytes(header) : 0;
    if (bytes == 0) return file_.Warn("the header points to a tag that is not there");
    const std::uint64_t left = source_.Size() - metadata_;
    if (bytes > left) file_.Warn("the tag is cut short");
    file_.id3.push_back({metadata_, std::min(bytes, left)});
  }

  void FindChunks() {
    ChunkHeader chunk;
    while (!has_sound_ && cursor_.left() >= kChunkHeaderBytes) {
      const std::uint64_t start = cursor_.position();
      if (!cursor_.ReadHeader(chunk)) return;
      std::uint64_t size = chunk.size;
      if (chunk.id == MakeChunkId("fmt ") && !has_format_) {
        if (!cursor_.Read(format_.data(), format_.size())) return;
        has_format_ = true;
        NoteChunk(chunk, start, std::max(size, kFormatChunkBytes) - kChunkHeaderBytes);
        if (size < kFormatChunkBytes) {
          file_.Warn("the format chunk states a wrong size");
          size = kFormatChunkBytes;
        }
      } else if (chunk.id == MakeChunkId("data")) {
        has_sound_ = true;
        file_.sound.offset = cursor_.position();
        stated_sound_ = size;
        NoteChunk(chunk, start, size - std::min(size, kChunkHeaderBytes));
        return;
      } else if (size < kChunkHeaderBytes) {
        return;  // leads nowhere
      } else {
        NoteChunk(chunk, start, size - kChunkHeaderBytes);
      }
      if (size > cursor_.file_size() - start || !cursor_.SeekTo(start + size)) return;
    }
  }

  // Sizes count the header here.
  void NoteChunk(const ChunkHeader& chunk, std::uint64_t start, std::uint64_t bytes) {
    const std::uint64_t body = start + kChunkHeaderBytes;
    const std::uint64_t left = cursor_.file_size() - std::min(cursor_.file_size(), body);
    file_.chunks.push_back({.id = chunk.id,
                            .header_offset = start,
                            .content = {body, std::min(bytes, left)},
                            .stated_bytes = chunk.size - std::min(chunk.size, kChunkHeaderBytes)});
  }

  std::uint32_t Word(std::size_t at) const {
    return Load<std::uint32_t>(ByteOrder::kLittle, &format_[at]);
  }

  bool CheckFormat() {
    const std::uint32_t version = Word(0);
    const std::uint32_t coding = Word(4);
    const std::uint32_t type = Word(8);
    const std::uint32_t bits = Word(20);
    file_.channels = Word(12);
    file_.rate_hz = Word(16);
    file_.stated_samples = Load<std::uint64_t>(ByteOrder::kLittle, &format_[24]);
    file_.block_bytes = Word(32);
    if (version != 1) file_.Warn("states format version " + std::to_string(version));
    if (coding != 0) {
      file_.Fail(Readable::kUnsupported,
                 "has sound of an unknown coding, number " + std::to_string(coding));
    }
    // 8 stands for one bit too, with the earliest one in the most significant place.
    file_.lsb_first = bits != 8;
    if (bits != 1 && bits != 8) {
      file_.Warn("states " + std::to_string(bits) + " bits per sample; taken for 1");
    }
    if (file_.block_bytes == 0 || file_.block_bytes > kMaxBlockBytes) {
      file_.Fail(Readable::kDamaged, "is damaged: its headers declare blocks of " +
                                         std::to_string(file_.block_bytes) + " bytes");
      file_.block_bytes = 1;
    }
    file_.speakers = SpeakersOfDsfType(type);
    if (static_cast<std::uint32_t>(std::popcount(file_.speakers)) != file_.channels) {
      if (file_.speakers != 0) {
        file_.Warn("the channel type is that of " + std::to_string(std::popcount(file_.speakers)) +
                   " channels, not of " + std::to_string(file_.channels));
      }
      file_.speakers = 0;
    }
    return file_.readable == Readable::kYes;
  }

  void Measure() {
    const std::uint64_t group = std::uint64_t{file_.block_bytes} * file_.channels;
    if (group == 0) return;  // no channels: reported by the caller
    const std::uint64_t start = file_.sound.offset;
    // A tag may stand anywhere but within the sound.
    const bool tag_follows = !file_.id3.empty() && file_.id3[0].offset > start;
    const std::uint64_t end = tag_follows ? file_.id3[0].offset : source_.Size();
    const std::uint64_t there = end - start;
    const std::uint64_t stated = stated_sound_ - std::min(stated_sound_, kChunkHeaderBytes);
    if (file_.stated_samples == 0 && stated > 0 && there > 0) {
      file_.Warn("the headers declare no samples; the size of the sound chunk stands in");
      file_.stated_samples = std::min(stated, there) / group * file_.block_bytes * 8;
    }
    const std::uint64_t groups = file_.stated_samples / (8 * file_.block_bytes) +
                                 (file_.stated_samples % (8 * file_.block_bytes) != 0);
    const std::uint64_t groups_there = there / group;
    if (groups <= groups_there) {
      file_.samples = file_.stated_samples;
      file_.sound.bytes = groups * group;
      // Some writers, our other engine among them, leave the chunk's header out of its size.
      if (stated != file_.sound.bytes && stated_sound_ != file_.sound.bytes) {
        file_.Warn("the sound chunk states " + std::to_string(stated) +
                   " bytes of sound; its samples take " + std::to_string(file_.sound.bytes));
      }
      return;
    }
    // In a group that is cut, as far as the last channel reaches.
    file_.sound.bytes = there;
    const BlockLayout layout = {file_.channels, file_.block_bytes};
    file_.samples = std::min(file_.stated_samples, layout.WholeBytes(there) * 8);
    WarnOfMissingSound(file_);
  }

  ByteSource& source_;
  SoundFile& file_;
  ChunkCursor cursor_;
  std::uint64_t stated_bytes_ = 0;
  std::uint64_t metadata_ = 0;
  std::array<std::uint8_t, 40> format_{};
  bool has_format_ = false;
  bool has_sound_ = false;
  std::uint64_t stated_sound_ = 0;
};

}  // namespace

void WalkDsf(ByteSource& source, SoundFile& file) {
  DsfWalk walk(source, file);
  walk.Run();
  walk.NoteEnds();
  walk.CheckEnd();
}

}  // namespace corvin::formats
