// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/unnamed_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "cli/words/failure.h"

namespace corvin::cli {
UnnamedFile::UnnamedFile() {
  const char* chosen = std::getenv("TMPDIR");
  const std::string directory = chosen && *chosen ? chosen : "/tmp";
  std::string name = directory + "/corvin-XXXXXX";
  descriptor_ = mkstemp(name.data());
  if (descriptor_ < 0)
    throw Failure(kWriteError, directory,
                  std::string("cannot hold what comes through a pipe: ") + std::strerror(errno));
  unlink(name.c_str());
  fcntl(descriptor_, F_SETFD, FD_CLOEXEC);
}

UnnamedFile::~UnnamedFile() { close(descriptor_); }

std::string UnnamedFile::path() const { return "/dev/fd/" + std::to_string(descriptor_); }

bool copy_bytes(int from, int to, bool& is_reading) {
  std::vector<char> bytes(1 << 18);
  for (;;) {
    is_reading = true;
    const ssize_t got = read(from, bytes.data(), bytes.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return got == 0;
    is_reading = false;
    for (ssize_t done = 0; done < got;) {
      const ssize_t written = write(to, bytes.data() + done, static_cast<size_t>(got - done));
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return false;
      done += written;
    }
  }
}

}  // namespace corvin::cli
