// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/pcm_feed.h"

#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace corvin::cli {
namespace {

constexpr size_t kBufferBytes = 1 << 16;

struct StreamCloser {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

bool write_all(int descriptor, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;  // EPIPE: the converter reads no more
    bytes = bytes.subspan(static_cast<size_t>(written));
  }
  return true;
}

}  // namespace

void feed_pcm(const PcmProducer& producer, const PcmConsumer& converter) {
  const auto system_error = [] {
    return std::system_error(errno, std::generic_category(), "a pipe cannot be made");
  };
  std::vector<uint8_t> buffer(kBufferBytes);
  int ends[2];
  if (pipe(ends) != 0) throw system_error();
  const int writing = ends[1];
  std::unique_ptr<std::FILE, StreamCloser> stream(fdopen(ends[0], "rb"));
  if (!stream) {
    const auto error = system_error();
    close(ends[0]);
    close(writing);
    throw error;
  }
  std::thread thread;
  try {
    thread = std::thread([&] {
      for (;;) {
        const size_t bytes = producer(buffer);
        if (bytes == 0 || !write_all(writing, {buffer.data(), bytes})) break;
      }
      close(writing);  // the converter sees the end
    });
  } catch (...) {
    close(writing);
    throw;
  }
  converter(stream.get());
  stream.reset();  // lets a producer that waits on a full pipe go
  thread.join();
}

}  // namespace corvin::cli
