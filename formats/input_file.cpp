// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvin::formats {

InputFile OpenInputFile(const char* path) {
  if (path == nullptr) return nullptr;
  // Opened first and looked at then, so that nobody can swap the file in between. O_NONBLOCK keeps
  // the opening of a FIFO from waiting; it has no effect on a regular file.
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  struct stat status;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    if (std::FILE* file = fdopen(descriptor, "rb")) return InputFile(file);
  }
  close(descriptor);
  return nullptr;
}

}  // namespace corvin::formats
