// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/pcm_pipe.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace corvin::cli {
namespace {

constexpr size_t kBufferBytes = 1 << 16;

class Descriptor {
 public:
  Descriptor() = default;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { reset(); }

  int number() const { return number_; }
  void reset(int number = -1) {
    if (number_ >= 0) close(number_);
    number_ = number;
  }
  int release() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};

struct StreamCloser {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, StreamCloser>;

std::system_error pipe_error() { return {errno, std::generic_category(), "a pipe cannot be made"}; }

struct Pipe {
  /** Throws std::system_error when there are no descriptors left. */
  Pipe() {
    int ends[2];
    if (pipe(ends) != 0) throw pipe_error();
    reading.reset(ends[0]);
    writing.reset(ends[1]);
  }

  Descriptor reading, writing;
};

/** Makes a stream of an end, which it then owns. Throws std::system_error. */
Stream open_stream(Descriptor& end, const char* mode) {
  Stream stream(fdopen(end.number(), mode));
  if (!stream) throw pipe_error();
  end.release();
  return stream;
}

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

void PcmDrain::run(size_t bytes_per_frame, const Converter& converter, const Receiver& receiver) {
  const std::unique_ptr<char[]> buffer(new char[kBufferBytes]);
  Pipe pipe;
  Stream stream = open_stream(pipe.writing, "wb");
  std::setvbuf(stream.get(), buffer.get(), _IOFBF, kBufferBytes);

  std::thread thread([&] { receive(pipe.reading.number(), bytes_per_frame, receiver); });
  converter(stream.get());
  stream.reset();  // the receiver sees the end
  thread.join();
}

void PcmDrain::receive(int descriptor, size_t bytes_per_frame, const Receiver& receiver) {
  std::vector<uint8_t> buffer(std::max(kBufferBytes, bytes_per_frame));
  size_t held = 0;
  for (;;) {
    const ssize_t got = read(descriptor, buffer.data() + held, buffer.size() - held);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return;
    held += static_cast<size_t>(got);
    const size_t whole = held / bytes_per_frame * bytes_per_frame;
    if (whole != 0 && !refused() && !receiver({buffer.data(), whole})) refused_ = true;
    std::copy(buffer.begin() + whole, buffer.begin() + held, buffer.begin());
    held -= whole;
  }
}

void feed_pcm(const PcmProducer& producer, const PcmConsumer& converter) {
  std::vector<uint8_t> buffer(kBufferBytes);
  Pipe pipe;
  Stream stream = open_stream(pipe.reading, "rb");
  std::thread thread([&] {
    for (;;) {
      const size_t bytes = producer(buffer);
      if (bytes == 0 || !write_all(pipe.writing.number(), {buffer.data(), bytes})) break;
    }
    pipe.writing.reset();  // the converter sees the end
  });
  converter(stream.get());
  stream.reset();  // lets a producer that waits on a full pipe go
  thread.join();
}

}  // namespace corvin::cli
