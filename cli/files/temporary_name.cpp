// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/temporary_name.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <memory>
#include <string_view>

namespace corvin::cli {
namespace {

constexpr std::string_view kMark = ".corvin-";
constexpr std::string_view kEnding = ".part";
constexpr size_t kMostNumbers = 24;  // those of a process and an attempt, and the sign between

size_t longest_name(const std::string& directory) {
  const long most = pathconf(directory.empty() ? "." : directory.c_str(), _PC_NAME_MAX);
  return most > 0 ? static_cast<size_t>(most) : 255;
}

std::string cut(const std::string& name, size_t most) {
  if (name.size() <= most) return name;
  while (most > 0 && (static_cast<uint8_t>(name[most]) & 0xc0) == 0x80) --most;
  return name.substr(0, most);
}

}  // namespace

TemporaryName::TemporaryName(const std::string& target) {
  const size_t slash = target.rfind('/');
  if (slash != std::string::npos) directory_ = target.substr(0, slash + 1);
  const size_t others = 1 + kMark.size() + kMostNumbers + kEnding.size();
  const size_t most = std::max(longest_name(directory_), others) - others;
  beginning_ = "." + cut(target.substr(directory_.size()), most) + std::string(kMark);
}

std::string TemporaryName::path(int attempt) const {
  return directory_ + beginning_ + std::to_string(getpid()) + "-" + std::to_string(attempt) +
         std::string(kEnding);
}

void TemporaryName::remove_stale() const {
  const char* path = directory_.empty() ? "." : directory_.c_str();
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(path), closedir);
  if (!directory) return;
  while (const dirent* entry = readdir(directory.get()))
    if (is_stale(entry->d_name)) unlink((directory_ + entry->d_name).c_str());
}

bool TemporaryName::is_stale(const std::string& name) const {
  if (!name.starts_with(beginning_) || !name.ends_with(kEnding)) return false;
  const char* digits = name.data() + beginning_.size();
  pid_t process = 0;
  const auto [end, error] = std::from_chars(digits, name.data() + name.size(), process);
  if (error != std::errc() || *end != '-' || process <= 0) return false;
  if (kill(process, 0) == 0 || errno != ESRCH) return false;
  // In a folder that several machines or containers share, the process may live elsewhere.
  const int descriptor =
      open((directory_ + name).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  struct stat status;
  const bool is_free = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                       flock(descriptor, LOCK_EX | LOCK_NB) == 0;
  close(descriptor);
  return is_free;
}

void lock_temporary(int descriptor) {
  // Some file systems know no locks; there the number of the process has to do.
  while (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EINTR) {
  }
}

}  // namespace corvin::cli
