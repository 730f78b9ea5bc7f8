// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace corvin::formats {

int OpenInputDescriptor(const char* path, std::uint64_t& bytes) {
  errno = 0;
  if (path == nullptr) return -1;
  // Opened first and looked at then, so that nobody can swap the file in between. O_NONBLOCK keeps
  // the opening of a FIFO from waiting; it has no effect on a regular file.
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return -1;
  struct stat status;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    bytes = static_cast<std::uint64_t>(status.st_size);
    return descriptor;
  }
  close(descriptor);
  errno = 0;
  return -1;
}

InputFile OpenInputFile(const char* path) {
  std::uint64_t bytes = 0;
  const int descriptor = OpenInputDescriptor(path, bytes);
  if (descriptor < 0) return nullptr;
  std::FILE* file = fdopen(descriptor, "rb");
  if (file == nullptr) close(descriptor);
  return InputFile(file);
}

}  // namespace corvin::formats
