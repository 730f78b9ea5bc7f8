// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/read_ahead.h"

#include <algorithm>

namespace corvin::studio {
namespace {

constexpr std::size_t kBlockBytes = 1 << 18;
constexpr std::size_t kBlocks = 8;

}  // namespace

ReadAhead::ReadAhead(formats::ByteSource& source, const formats::ByteRange& range, bool threaded)
    : source_(source), offset_(range.offset), left_(range.bytes), blocks_(threaded ? kBlocks : 1) {
  for (Block& block : blocks_) block.bytes.resize(kBlockBytes);
  if (threaded) thread_ = std::thread([this] { run(); });
}

ReadAhead::~ReadAhead() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

// False when the source has less than it should.
bool ReadAhead::fill(Block& block) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left_, block.bytes.size()));
  block.count = source_.Read(offset_, block.bytes.data(), wanted);
  offset_ += block.count;
  left_ -= block.count;
  return block.count == wanted;
}

void ReadAhead::run() {
  std::unique_lock lock(mutex_);
  while (left_ > 0) {
    // Several blocks at a time: being woken costs as much as reading one.
    if (filled_ - released_ == blocks_.size()) {
      changed_.wait(lock,
                    [this] { return stopping_ || filled_ - released_ <= blocks_.size() / 2; });
    }
    if (stopping_) return;
    Block& block = blocks_[filled_ % blocks_.size()];
    lock.unlock();
    const bool whole = fill(block);
    lock.lock();
    if (block.count > 0) ++filled_;
    read_failed_ = !whole;
    if (!whole) break;
    if (waiting_) changed_.notify_one();
  }
  ended_ = true;
  changed_.notify_one();
}

std::span<const std::uint8_t> ReadAhead::next() {
  if (!thread_.joinable()) {
    Block& block = blocks_[0];
    block.count = 0;
    if (!failed_ && left_ > 0) failed_ = !fill(block);
    return {block.bytes.data(), block.count};
  }
  std::unique_lock lock(mutex_);
  released_ = taken_;
  if (filled_ - released_ <= blocks_.size() / 2) changed_.notify_one();
  waiting_ = true;
  changed_.wait(lock, [this] { return ended_ || filled_ > taken_; });
  waiting_ = false;
  if (filled_ == taken_) {
    failed_ = read_failed_;
    return {};
  }
  const Block& block = blocks_[taken_++ % blocks_.size()];
  return {block.bytes.data(), block.count};
}

}  // namespace corvin::studio
