// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/byte_source.h"

#include <unistd.h>

#include <cerrno>

#include "formats/bytes/input_file.h"
#include "formats/bytes/sequential_source.h"

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

class PipeSource : public SequentialSource {
 public:
  explicit PipeSource(int descriptor) : descriptor_(descriptor) {}
  ~PipeSource() override { close(descriptor_); }
  PipeSource(const PipeSource&) = delete;
  PipeSource& operator=(const PipeSource&) = delete;

 private:
  std::int64_t Next(void* to, std::size_t bytes) override {
    for (;;) {
      const ssize_t got = read(descriptor_, to, bytes);
      if (got >= 0 || errno != EINTR) return got;
    }
  }

  int descriptor_;
};

// Null for no descriptor.
template <class Source, typename... Args>
std::unique_ptr<ByteSource> Own(int descriptor, Args... args) {
  if (descriptor < 0) return nullptr;
  try {
    return std::make_unique<Source>(descriptor, args...);
  } catch (...) {
    close(descriptor);
    throw;
  }
}

}  // namespace

std::unique_ptr<ByteSource> OpenFileSource(const char* path) {
  std::uint64_t size = 0;
  const int descriptor = OpenInputDescriptor(path, size);
  return Own<FileSource>(descriptor, size);
}

std::unique_ptr<ByteSource> OpenFileOrPipeSource(const char* path) {
  if (IsPipe(path)) return Own<PipeSource>(OpenPipeDescriptor(path));
  return OpenFileSource(path);
}

}  // namespace corvin::formats
