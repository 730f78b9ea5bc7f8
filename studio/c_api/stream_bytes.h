// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A host's callbacks as a source or sink of bytes.

#ifndef CORVIN_STUDIO_C_API_STREAM_BYTES_H_
#define CORVIN_STUDIO_C_API_STREAM_BYTES_H_

#include <algorithm>
#include <cstdint>

#include "corvin.h"
#include "formats/bytes/byte_source.h"
#include "formats/bytes/sequential_source.h"

namespace corvin::studio {

class StreamSource : public formats::ByteSource {
 public:
  StreamSource(const corvin_stream& stream, std::uint64_t size) : stream_(stream), size_(size) {}

  std::uint64_t Size() const override { return size_; }

  std::size_t Read(std::uint64_t offset, void* to, std::size_t bytes) override {
    if (offset >= size_) return 0;
    bytes = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, size_ - offset));
    if (stream_.seek(stream_.user, offset) != 0) {
      failed_ = true;
      return 0;
    }
    std::size_t done = 0;
    while (done < bytes) {
      const std::size_t left = bytes - done;
      const std::int64_t got =
          stream_.read(stream_.user, static_cast<std::uint8_t*>(to) + done, left);
      if (got == 0) break;
      if (got < 0 || static_cast<std::uint64_t>(got) > left) {
        failed_ = true;
        break;
      }
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

 private:
  corvin_stream stream_;
  std::uint64_t size_;
};

class SequentialStreamSource : public formats::SequentialSource {
 public:
  explicit SequentialStreamSource(const corvin_stream& stream) : stream_(stream) {}

 private:
  std::int64_t Next(void* to, std::size_t bytes) override {
    const std::int64_t got = stream_.read(stream_.user, to, bytes);
    return got > 0 && static_cast<std::uint64_t>(got) > bytes ? -1 : got;
  }

  corvin_stream stream_;
};

class StreamSink : public formats::ByteSink {
 public:
  explicit StreamSink(const corvin_stream& stream) : stream_(stream) {}

  bool Write(std::uint64_t offset, const void* from, std::size_t bytes) override {
    const bool there =
        stream_.seek != nullptr ? stream_.seek(stream_.user, offset) == 0 : offset == written_;
    written_ = offset + bytes;
    return there && stream_.write(stream_.user, from, bytes) == 0;
  }

 private:
  corvin_stream stream_;
  std::uint64_t written_ = 0;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_C_API_STREAM_BYTES_H_
