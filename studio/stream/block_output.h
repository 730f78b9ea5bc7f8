// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Puts the bytes of a ring into a block layout, cut wherever the caller cuts them. Interleaved
// bytes go straight to the caller's memory as long as there is room for one of each channel; else a
// group is put together and handed out.

#ifndef CORVIN_STUDIO_STREAM_BLOCK_OUTPUT_H_
#define CORVIN_STUDIO_STREAM_BLOCK_OUTPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "formats/bytes/block_layout.h"

namespace corvin::studio {

/// `copy(channel, count, to, stride)` copies the next `count` bytes of a channel, which the ring
/// has available, to every `stride`th place.
class BlockOutput {
 public:
  /// @param silence  fills the last block up
  BlockOutput(const formats::BlockLayout& layout, std::uint8_t silence)
      : layout_(layout),
        silence_(silence),
        block_(static_cast<std::size_t>(layout.block)),
        channels_(static_cast<std::size_t>(layout.channels)),
        group_(static_cast<std::size_t>(layout.group())) {}

  /// Hands out up to `bytes` bytes, as far as the ring has them, and returns how many.
  template <typename Ring, typename Copy>
  std::size_t pull(std::uint8_t* out, std::size_t bytes, Ring& ring, Copy copy) {
    std::size_t done = 0;
    while (done < bytes) {
      const bool patient = done == 0;
      const std::size_t whole = layout_.interleaved() ? (bytes - done) / channels_ : 0;
      if (filled_ == block_) {
        done += send(out + done, bytes - done);
      } else if (whole > 0) {
        const std::size_t count = std::min(whole, ring.available(patient));
        if (count == 0) break;
        for (std::size_t c = 0; c < channels_; ++c) copy(c, count, out + done + c, channels_);
        ring.advance(count);
        done += count * channels_;
      } else if (!fill(patient, ring, copy)) {
        break;
      }
    }
    return done;
  }

  /// Whether a group has begun that is not handed out.
  bool holds_some() const { return filled_ > 0; }

  void reset() { filled_ = sent_ = 0; }

 private:
  std::size_t send(std::uint8_t* out, std::size_t bytes) {
    const std::size_t part = std::min(bytes, group_.size() - sent_);
    std::memcpy(out, &group_[sent_], part);
    sent_ += part;
    if (sent_ == group_.size()) reset();
    return part;
  }

  // Moves bytes to the group, or ends it with silence behind the last byte. False when there is
  // nothing to move.
  template <typename Ring, typename Copy>
  bool fill(bool patient, Ring& ring, Copy& copy) {
    const std::size_t count = std::min(block_ - filled_, ring.available(patient));
    if (count == 0 && !(ring.drained_all() && filled_ > 0)) return false;
    for (std::size_t c = 0; c < channels_; ++c) {
      std::uint8_t* to = &group_[static_cast<std::size_t>(layout_.Offset(c, filled_))];
      if (count > 0) {
        copy(c, count, to, 1);
      } else {
        std::memset(to, silence_, block_ - filled_);
      }
    }
    if (count > 0) ring.advance(count);
    filled_ += count > 0 ? count : block_ - filled_;
    return true;
  }

  formats::BlockLayout layout_;
  std::uint8_t silence_;
  std::size_t block_;
  std::size_t channels_;
  std::vector<std::uint8_t> group_;
  std::size_t filled_ = 0;  // bytes of each channel in it
  std::size_t sent_ = 0;    // bytes handed out; only when it is full
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_BLOCK_OUTPUT_H_
