// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace corvin::formats {

NewFile::~NewFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

bool NewFile::Open(const char* path) {
  target_ = path;
  struct stat status;
  const bool is_there = stat(path, &status) == 0;
  if (is_there) {
    if (!S_ISREG(status.st_mode)) {
      errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
      return false;
    }
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path, nullptr), std::free);
    if (!resolved) return false;
    target_ = resolved.get();
  } else if (errno != ENOENT || target_.empty()) {
    return false;
  }
  const std::size_t slash = target_.rfind('/');
  const std::string directory = slash == std::string::npos ? "" : target_.substr(0, slash + 1);
  // Not made from the target's name, which may be as long as a name can be. Not mkstemp(), which
  // would keep the file from other users.
  for (int attempt = 0; attempt < 1000; ++attempt) {
    std::string name =
        directory + ".corvin-" + std::to_string(getpid()) + "-" + std::to_string(attempt) + ".new";
    descriptor_ = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ >= 0) {
      temporary_ = std::move(name);
      return !is_there || fchmod(descriptor_, status.st_mode & 07777) == 0;
    }
    if (errno != EEXIST) break;
  }
  return false;
}

bool NewFile::Write(std::uint64_t offset, const void* from, std::size_t bytes) {
  const auto* place = static_cast<const char*>(from);
  while (bytes > 0) {
    const ssize_t written = pwrite(descriptor_, place, bytes, static_cast<off_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    place += written;
    offset += static_cast<std::uint64_t>(written);
    bytes -= static_cast<std::size_t>(written);
  }
  return true;
}

bool NewFile::Sync() {
  while (fsync(descriptor_) != 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

bool NewFile::Commit() {
  const int descriptor = descriptor_;
  descriptor_ = -1;
  // Network file systems report failed writes here.
  if (close(descriptor) != 0) return false;
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) return false;
  temporary_.clear();
  return true;
}

}  // namespace corvin::formats
