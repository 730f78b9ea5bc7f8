// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/pcm_pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace corvin::cli {
namespace {

constexpr size_t kBufferBytes = 1 << 16;

class Descriptor {
 public:
  ~Descriptor() {
    if (number >= 0) close(number);
  }
  int number = -1;
};

}  // namespace

void PcmPipe::run(size_t bytes_per_frame, const Converter& converter, const Receiver& receiver) {
  const auto system_error = [] {
    return std::system_error(errno, std::generic_category(), "a pipe cannot be made");
  };
  int ends[2];
  if (pipe(ends) != 0) throw system_error();
  Descriptor reading{ends[0]}, writing{ends[1]};
  const std::unique_ptr<char[]> buffer(new char[kBufferBytes]);
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(fdopen(writing.number, "wb"), std::fclose);
  if (!stream) throw system_error();
  writing.number = -1;  // closed with the stream
  std::setvbuf(stream.get(), buffer.get(), _IOFBF, kBufferBytes);

  std::thread thread([&] { receive(reading.number, bytes_per_frame, receiver); });
  converter(stream.get());
  stream.reset();  // the receiver sees the end
  thread.join();
}

void PcmPipe::receive(int descriptor, size_t bytes_per_frame, const Receiver& receiver) {
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

}  // namespace corvin::cli
