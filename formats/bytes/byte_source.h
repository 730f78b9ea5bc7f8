// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Where the bytes of a sound file come from and go to: a file, or a host's callbacks. Both are
// addressed by offset, so that no position has to be kept in step, even where they come only once.

#ifndef CORVIN_FORMATS_BYTES_BYTE_SOURCE_H_
#define CORVIN_FORMATS_BYTES_BYTE_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

namespace corvin::formats {

/// Larger than any file, and a signed number.
inline constexpr std::uint64_t kUnknownSize = std::numeric_limits<std::int64_t>::max();

class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Bytes in all; kUnknownSize before the end of what is sequential.
  virtual std::uint64_t Size() const = 0;

  /// Whether the bytes come once, in order. Then a read may begin anywhere ahead, but not far behind.
  virtual bool IsSequential() const { return false; }

  /// Copies up to `bytes` bytes from `offset` on and returns their number. Fewer at the end of the
  /// source, and when reading fails.
  virtual std::size_t Read(std::uint64_t offset, void* to, std::size_t bytes) = 0;

  /// Whether a read has failed, rather than met the end.
  bool failed() const { return failed_; }

 protected:
  bool failed_ = false;
};

class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Writes all bytes at `offset`, at most the end of what was written; false when that fails.
  virtual bool Write(std::uint64_t offset, const void* from, std::size_t bytes) = 0;
};

/// Opens a regular file for reading. Null when that fails; errno then says why, 0 for a file that
/// is not a regular one.
std::unique_ptr<ByteSource> OpenFileSource(const char* path);

/// The same, and a pipe, which waits until somebody writes to it.
std::unique_ptr<ByteSource> OpenFileOrPipeSource(const char* path);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_BYTE_SOURCE_H_
