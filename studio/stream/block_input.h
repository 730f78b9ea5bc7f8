// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Takes the bytes of a block layout apart, cut wherever the caller cuts them. What is whole goes on
// straight from the caller's memory; a group that came in parts, or that found room only for its
// head, is kept until it can.

#ifndef CORVIN_STUDIO_STREAM_BLOCK_INPUT_H_
#define CORVIN_STUDIO_STREAM_BLOCK_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "formats/bytes/block_layout.h"

namespace corvin::studio {

/// `accept(bytes, stride, place)`, where place(channel, i) is where byte i of a channel stands and
/// the next ones follow every `stride` bytes, takes up to `bytes` bytes of each channel and returns
/// how many.
class BlockInput {
 public:
  explicit BlockInput(const formats::BlockLayout& layout)
      : layout_(layout),
        block_(static_cast<std::size_t>(layout.block)),
        group_(static_cast<std::size_t>(layout.group())) {}

  /// Takes bytes in their layout and returns how many.
  template <typename Accept>
  std::size_t push(const std::uint8_t* data, std::size_t bytes, Accept accept) {
    std::size_t taken = 0;
    while (taken < bytes && pass_on(accept)) {
      const std::uint8_t* from = data + taken;
      const std::size_t left = bytes - taken;
      if (held_ > 0 || left < group_.size()) {
        const std::size_t part = std::min(left, group_.size() - held_);
        hold(from, part);
        taken += part;
        continue;
      }
      const std::size_t whole = layout_.interleaved() ? left / group_.size() : block_;
      const std::size_t passed = pass(from, 0, whole, accept);
      if (passed == 0) break;
      if (layout_.interleaved()) {
        taken += passed * group_.size();
        continue;
      }
      taken += group_.size();
      if (passed == whole) continue;
      hold(from, group_.size());
      passed_ = passed;
    }
    pass_on(accept);
    return taken;
  }

  /// Passes on what is left of a complete group. False when some of it still is.
  template <typename Accept>
  bool pass_on(Accept accept) {
    if (complete_ == 0) return true;
    passed_ += pass(group_.data(), passed_, complete_ - passed_, accept);
    if (passed_ < complete_) return false;
    reset();
    return true;
  }

  /// Nothing follows: a group that is not whole counts as far as all channels reach.
  void end() {
    if (complete_ > 0) return;
    const std::size_t before_last = group_.size() - block_;
    complete_ = held_ > before_last ? held_ - before_last : 0;
    if (complete_ == 0) held_ = 0;
  }

  /// Whether a group has begun that is not passed on.
  bool holds_some() const { return held_ > 0; }

  void reset() { held_ = complete_ = passed_ = 0; }

 private:
  template <typename Accept>
  std::size_t pass(const std::uint8_t* from, std::size_t first, std::size_t bytes, Accept& accept) {
    return accept(bytes, layout_.Stride(), [&](std::size_t channel, std::size_t byte) {
      return from + layout_.Offset(channel, first + byte);
    });
  }

  void hold(const std::uint8_t* from, std::size_t bytes) {
    std::memcpy(&group_[held_], from, bytes);
    held_ += bytes;
    if (held_ == group_.size()) complete_ = block_;
  }

  formats::BlockLayout layout_;
  std::size_t block_;
  std::vector<std::uint8_t> group_;
  std::size_t held_ = 0;      // bytes of it that came
  std::size_t complete_ = 0;  // bytes of each channel to pass on, once it is complete
  std::size_t passed_ = 0;    // of them passed on
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_BLOCK_INPUT_H_
