// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "cli/files/interrupt.h"
#include "cli/files/temporary_name.h"

namespace corvin::cli {
namespace {

constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

// The superuser may write everywhere, which does not mean that he wants to.
bool is_write_protected(const std::string& path, const struct stat& status) {
  return (status.st_mode & kAnyWrite) == 0 || access(path.c_str(), W_OK) != 0;
}

}  // namespace

void make_directory_of(const std::string& path) {
  const std::filesystem::path directory = std::filesystem::path(path).parent_path();
  std::error_code error;
  if (directory.empty() || std::filesystem::is_directory(directory, error)) return;
  std::filesystem::create_directories(directory, error);
  if (error) throw Failure(kWriteError, directory.string(), error.message());
}

OutputFile::OutputFile(Config config, Unopened) : config_(std::move(config)) {}

void OutputFile::check(Config config) {
  OutputFile file(std::move(config), Unopened{});
  if (file.config_.path != "-") file.check_target();
}

OutputFile::OutputFile(Config config) : OutputFile(std::move(config), Unopened{}) {
  struct stat input;
  if (config_.preserve_time && stat(config_.input_path.c_str(), &input) == 0)
    input_time_ = input.st_mtim;
  if (config_.path == "-") {
    open_standard_output();
    return;
  }
  check_target();
  if (as_it_is_)
    open_as_it_is();
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
  const bool is_temporary = !temporary_path_.empty();
  if (is_temporary) {
    if (older_) give_old_mode();
    give_input_time();
    // Before the renaming: after a power cut the name must not stand for an empty file. Where the
    // file system has no such thing, closing has to do.
    if (fsync(descriptor_) != 0 && errno != EINVAL && errno != ENOTSUP) throw write_error();
  } else if (held_) {
    send_held();
  } else {
    lseek(descriptor_, 0, SEEK_END);  // what others write to standard output comes behind
  }
  const int descriptor = std::exchange(descriptor_, -1);
  if (close(descriptor) != 0) throw write_error();  // network file systems report here
  if (is_temporary) rename_to_target();
}

// ---- Details --------------------------------------------------------------------------------

Failure OutputFile::refusal(ExitCode code, const std::string& why) const {
  return {code, config_.path == "-" ? "standard output" : config_.path, why};
}

Failure OutputFile::write_error() const { return refusal(kWriteError, std::strerror(errno)); }

Failure OutputFile::exists_already() const {
  return refusal(kUsage, "exists already; -y overwrites it");
}

bool OutputFile::is_input(const struct stat& status) const {
  if (config_.other_inputs && config_.other_inputs->has(status)) return true;
  return FileIdentities({config_.input_path}).has(status);
}

void OutputFile::check_target() {
  target_ = config_.path;
  if (target_.empty()) throw refusal(kUsage, "is no file name");
  struct stat status;
  if (stat(target_.c_str(), &status) != 0) {
    if (errno != ENOENT) throw write_error();
    // A symbolic link that leads nowhere; it would be replaced itself.
    if (lstat(target_.c_str(), &status) == 0 && !config_.overwrite) throw exists_already();
    return;
  }
  if (is_input(status)) throw refusal(kUsage, "is an input itself; give the output another name");
  if (S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode)) {
    as_it_is_ = status;
    return;
  }
  if (S_ISDIR(status.st_mode)) throw refusal(kWriteError, "is a directory");
  if (!S_ISREG(status.st_mode)) throw refusal(kWriteError, "is not a regular file");
  if (!config_.overwrite) throw exists_already();
  if (!config_.force && is_write_protected(target_, status))
    throw refusal(kUsage, "is write-protected; --force overwrites it all the same");
  older_ = status;
  const std::unique_ptr<char, void (*)(void*)> resolved(realpath(target_.c_str(), nullptr),
                                                        std::free);
  if (!resolved) throw write_error();
  target_ = resolved.get();
}

void OutputFile::open_standard_output() {
  target_ = "/dev/stdout";
  descriptor_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  struct stat status;
  if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) throw write_error();
  const auto close_and = [&](const Failure& failure) {
    close(std::exchange(descriptor_, -1));
    return failure;
  };
  if (isatty(descriptor_) == 1)
    throw close_and(refusal(kUsage, "is a terminal; send it to a file or a program"));
  if (S_ISREG(status.st_mode) && is_input(status))
    throw close_and(refusal(kUsage, "is an input itself"));
  // What stands there already, or is appended to, is not ours to go back over.
  const int flags = fcntl(descriptor_, F_GETFL);
  if (!S_ISREG(status.st_mode) || (flags & O_APPEND) != 0 || lseek(descriptor_, 0, SEEK_CUR) != 0)
    held_.emplace();
}

void OutputFile::send_held() {
  lseek(held_->descriptor(), 0, SEEK_SET);
  bool is_reading = false;
  if (!copy_bytes(held_->descriptor(), descriptor_, is_reading)) throw write_error();
}

void OutputFile::open_as_it_is() {
  descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor_ < 0) throw write_error();
  held_.emplace();
}

void OutputFile::open_temporary() {
  const TemporaryName name(target_);
  name.remove_stale();
  // Of a new file the permissions are those of any other, which mkstemp() would not give. What
  // replaces a file that others cannot read must not be open to them meanwhile.
  const mode_t mode =
      older_ ? S_IRUSR | S_IWUSR : S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  const InterruptsHeld held;
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const std::string path = name.path(attempt);
    descriptor_ = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor_ >= 0) {
      lock_temporary(descriptor_);
      temporary_path_ = path;
      remove_on_interrupt(path);
      return;
    }
    if (errno != EEXIST) break;
  }
  throw write_error();
}

// What is not allowed is left as it is for a new file.
void OutputFile::give_old_mode() const {
  mode_t mode = older_->st_mode & kPermissions;
  const bool is_group_kept = fchown(descriptor_, older_->st_uid, older_->st_gid) == 0 ||
                             fchown(descriptor_, static_cast<uid_t>(-1), older_->st_gid) == 0;
  // Another group gets no more than everybody.
  if (!is_group_kept) mode &= ~static_cast<mode_t>(S_IRWXG) | (mode & S_IRWXO) << 3;
  if (fchmod(descriptor_, mode) != 0) throw write_error();
}

void OutputFile::give_input_time() const {
  if (!input_time_) return;
  const timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, *input_time_};
  if (futimens(descriptor_, times) != 0) throw write_error();
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
