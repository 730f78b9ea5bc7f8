// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The bytes of a part of a file, buffer by buffer, read on a thread of its own while the buffers
// before are worked on, or on the caller's.

#ifndef CORVIN_STUDIO_CONVERT_READ_AHEAD_H_
#define CORVIN_STUDIO_CONVERT_READ_AHEAD_H_

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "formats/bytes/byte_source.h"
#include "formats/sound_file.h"

namespace corvin::studio {

class ReadAhead {
 public:
  /// @param source  used by nobody else meanwhile
  /// Throws std::bad_alloc and std::system_error.
  ReadAhead(formats::ByteSource& source, const formats::ByteRange& range, bool threaded);
  ~ReadAhead();
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  /// The next buffer, which stays until the next call; empty at the end. One thread only.
  std::span<const std::uint8_t> next();

  /// Whether the source ended before the range did, known once next() returns nothing.
  bool failed() const { return failed_; }

 private:
  struct Buffer {
    std::vector<std::uint8_t> bytes;
    std::size_t count = 0;
  };

  bool fill(Buffer& buffer);
  void run();

  formats::ByteSource& source_;
  std::uint64_t offset_;
  std::uint64_t left_;
  std::vector<Buffer> buffers_;
  bool failed_ = false;

  // With a thread: buffers numbered in order of reading, each in turn in the ring.
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t filled_ = 0;
  std::size_t released_ = 0;
  std::size_t taken_ = 0;
  bool ended_ = false;
  bool stopping_ = false;
  bool waiting_ = false;  // for a buffer
  bool read_failed_ = false;
  std::thread thread_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_READ_AHEAD_H_
