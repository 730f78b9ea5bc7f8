// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "cli/files/interrupt.h"

namespace corvin::cli {

OutputFile::OutputFile(Config config) : config_(std::move(config)) {
  check_target();
  if (is_device_)
    open_device();
  else
    open_temporary();
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (temporary_path_.empty()) return;
  const InterruptsHeld held;
  unlink(temporary_path_.c_str());
  keep_on_interrupt(temporary_path_);
}

void OutputFile::commit() {
  const int descriptor = descriptor_;
  descriptor_ = -1;
  if (close(descriptor) != 0) throw write_error();  // network file systems report here
  if (!is_device_) rename_to_target();
}

// ---- Details --------------------------------------------------------------------------------

Failure OutputFile::refusal(ExitCode code, const std::string& why) const {
  return {code, config_.path, why};
}

Failure OutputFile::write_error() const { return refusal(kWriteError, std::strerror(errno)); }

Failure OutputFile::exists_already() const {
  return refusal(kUsage, "exists already; -y overwrites it");
}

void OutputFile::check_target() {
  target_ = config_.path;
  if (target_.empty()) throw refusal(kUsage, "is no file name");
  struct stat status, input;
  if (stat(target_.c_str(), &status) != 0) {
    if (errno != ENOENT) throw write_error();
    // A symbolic link that leads nowhere; it would be replaced itself.
    if (lstat(target_.c_str(), &status) == 0 && !config_.overwrite) throw exists_already();
    return;
  }
  if (stat(config_.input_path.c_str(), &input) == 0 && input.st_dev == status.st_dev &&
      input.st_ino == status.st_ino)
    throw refusal(kUsage, "is the input itself");
  is_device_ = S_ISCHR(status.st_mode);
  if (is_device_) return;
  if (S_ISDIR(status.st_mode)) throw refusal(kWriteError, "is a directory");
  if (!S_ISREG(status.st_mode)) throw refusal(kWriteError, "is not a regular file");
  if (!config_.overwrite) throw exists_already();
  const std::unique_ptr<char, void (*)(void*)> resolved(realpath(target_.c_str(), nullptr),
                                                        std::free);
  if (!resolved) throw write_error();
  target_ = resolved.get();
}

void OutputFile::open_device() {
  descriptor_ = open(target_.c_str(), O_RDWR | O_CLOEXEC);
  if (descriptor_ < 0) throw write_error();
  if (lseek(descriptor_, 0, SEEK_CUR) >= 0) return;
  close(descriptor_);
  throw refusal(kWriteError, "is a device that cannot be rewound to complete the header");
}

void OutputFile::open_temporary() {
  const size_t slash = target_.rfind('/');
  const std::string directory = slash == std::string::npos ? "" : target_.substr(0, slash + 1);
  const InterruptsHeld held;
  // The name does not contain the output's: that may already be as long as a name can be. A plain
  // open() gives the file the permissions of any other new file, which mkstemp() would not.
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const std::string path =
        directory + ".corvin-" + std::to_string(getpid()) + "-" + std::to_string(attempt) + ".part";
    descriptor_ = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ >= 0) {
      temporary_path_ = path;
      remove_on_interrupt(path);
      return;
    }
    if (errno != EEXIST) break;
  }
  throw write_error();
}

void OutputFile::rename_to_target() {
  const InterruptsHeld held;
  const char* from = temporary_path_.c_str();
  const char* to = target_.c_str();
  if (!config_.overwrite) {
    // Unlike a renaming, a link never replaces a file that has come up meanwhile. Where the file
    // system knows no links, the check at the start has to do.
    if (link(from, to) == 0) return;  // the destructor drops the other name
    if (errno == EEXIST) throw exists_already();
  }
  if (std::rename(from, to) != 0) throw write_error();
  keep_on_interrupt(temporary_path_);
  temporary_path_.clear();
}

}  // namespace corvin::cli
