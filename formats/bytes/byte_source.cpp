// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/byte_source.h"

#include <unistd.h>

#include <cerrno>

#include "formats/bytes/input_file.h"

namespace corvin::formats {
namespace {

class FileSource : public ByteSource {
 public:
  FileSource(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}
  ~FileSource() override { close(descriptor_); }
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;

  std::uint64_t Size() const override { return size_; }

  std::size_t Read(std::uint64_t offset, void* to, std::size_t bytes) override {
    auto* place = static_cast<std::uint8_t*>(to);
    std::size_t done = 0;
    while (done < bytes && offset + done < size_) {
      const ssize_t got =
          pread(descriptor_, place + done, bytes - done, static_cast<off_t>(offset + done));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) failed_ = true;
      if (got <= 0) break;
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

 private:
  int descriptor_;
  std::uint64_t size_;
};

}  // namespace

std::unique_ptr<ByteSource> OpenFileSource(const char* path) {
  std::uint64_t size = 0;
  const int descriptor = OpenInputDescriptor(path, size);
  if (descriptor < 0) return nullptr;
  try {
    return std::make_unique<FileSource>(descriptor, size);
  } catch (...) {
    close(descriptor);
    throw;
  }
}

}  // namespace corvin::formats
