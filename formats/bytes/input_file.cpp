// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

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

namespace {

// Opening it anew would wait for a writer of a FIFO, though that one may be done.
bool IsStandardInput(const char* path) { return std::strcmp(path, "/dev/stdin") == 0; }

}  // namespace

bool IsPipe(const char* path) {
  struct stat status;
  if (IsStandardInput(path)) {
    return fstat(STDIN_FILENO, &status) == 0 &&
           (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
  }
  return stat(path, &status) == 0 && S_ISFIFO(status.st_mode);
}

int OpenPipeDescriptor(const char* path) {
  if (IsStandardInput(path)) return fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
  return open(path, O_RDONLY | O_CLOEXEC);
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
