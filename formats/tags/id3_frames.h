// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// ID3v2 blocks as lists of frames: versions 2.2 to 2.4, what wraps a block and what wraps a frame.
// What the frames mean is told elsewhere.

#ifndef CORVIN_FORMATS_TAGS_ID3_FRAMES_H_
#define CORVIN_FORMATS_TAGS_ID3_FRAMES_H_

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "formats/tags/tag_set.h"

namespace corvin::formats {

enum class Id3Version { k23 = 3, k24 = 4 };

struct Id3Frame {
  Id3FrameHeader header;
  ByteSpan body;  ///< without what the header stands for
};

struct Id3Frames {
  int version = 0;  ///< 2, 3 or 4
  std::vector<Id3Frame> frames;
  /// Sentences without subject on what could not be taken.
  std::vector<std::string> warnings;

  std::list<std::vector<std::uint8_t>> resynchronised;  ///< bodies that do not stand in the block
};

/// Splits a block, which the result points into. Frames of 2.2 get the names of 2.4. False when no
/// block of a known version begins there. A size never leads out of the block; what lies behind a
/// frame that is none is left out.
bool SplitId3Block(ByteSpan block, Id3Frames& to);

/// Builds a block from frames; empty when there are none.
class Id3BlockBuilder {
 public:
  explicit Id3BlockBuilder(Id3Version version) : version_(version) {}

  /// A frame whose content is `body` and what comes behind it.
  void Add(std::string_view id, std::string_view body, ByteSpan behind = {});
  void Add(const Id3FrameHeader& header, ByteSpan body, ByteSpan behind = {});

  /// False when the block is larger than the 256 MiB that its header can state.
  bool Finish(std::vector<std::uint8_t>& block);

 private:
  void PutSize(std::uint64_t size, bool seven_bits);

  Id3Version version_;
  std::vector<std::uint8_t> bytes_;  // of the header and the frames
  bool is_too_large_ = false;
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_ID3_FRAMES_H_
