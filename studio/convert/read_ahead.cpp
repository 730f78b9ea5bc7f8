// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/read_ahead.h"

#include <algorithm>

namespace corvin::studio {
namespace {

constexpr std::size_t kBufferBytes = 1 << 18;
constexpr std::size_t kBuffers = 8;

}  // namespace

ReadAhead::ReadAhead(formats::ByteSource& source, const formats::ByteRange& range, bool threaded)
    : source_(source),
      offset_(range.offset),
      left_(range.bytes),
      buffers_(threaded ? kBuffers : 1) {
  for (Buffer& buffer : buffers_) buffer.bytes.resize(kBufferBytes);
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
bool ReadAhead::fill(Buffer& buffer) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left_, buffer.bytes.size()));
  buffer.count = source_.Read(offset_, buffer.bytes.data(), wanted);
  offset_ += buffer.count;
  left_ -= buffer.count;
  return buffer.count == wanted;
}

void ReadAhead::run() {
  std::unique_lock lock(mutex_);
  while (left_ > 0) {
    // Several buffers at a time: being woken costs as much as reading one.
    if (filled_ - released_ == buffers_.size()) {
      changed_.wait(lock,
                    [this] { return stopping_ || filled_ - released_ <= buffers_.size() / 2; });
    }
    if (stopping_) return;
    Buffer& buffer = buffers_[filled_ % buffers_.size()];
    lock.unlock();
    const bool whole = fill(buffer);
    lock.lock();
    if (buffer.count > 0) ++filled_;
    read_failed_ = !whole;
    if (!whole) break;
    if (waiting_) changed_.notify_one();
  }
  ended_ = true;
  changed_.notify_one();
}

std::span<const std::uint8_t> ReadAhead::next() {
  if (!thread_.joinable()) {
    Buffer& buffer = buffers_[0];
    buffer.count = 0;
    if (!failed_ && left_ > 0) failed_ = !fill(buffer);
    return {buffer.bytes.data(), buffer.count};
  }
  std::unique_lock lock(mutex_);
  released_ = taken_;
  if (filled_ - released_ <= buffers_.size() / 2) changed_.notify_one();
  waiting_ = true;
  changed_.wait(lock, [this] { return ended_ || filled_ > taken_; });
  waiting_ = false;
  if (filled_ == taken_) {
    failed_ = read_failed_;
    return {};
  }
  const Buffer& buffer = buffers_[taken_++ % buffers_.size()];
  return {buffer.bytes.data(), buffer.count};
}

}  // namespace corvin::studio
