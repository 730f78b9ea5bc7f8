// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/piped_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/words/failure.h"

namespace corvin::cli {

std::shared_ptr<const UnnamedFile> content_of_pipe(const std::string& path) {
  const bool is_standard_input = path == "-";
  struct stat status;
  if (!is_standard_input && (stat(path.c_str(), &status) != 0 || !S_ISFIFO(status.st_mode)))
    return nullptr;
  const std::string name = is_standard_input ? "standard input" : path;
  const int pipe = is_standard_input ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (pipe < 0) throw Failure(kBadInput, name, std::strerror(errno));
  if (isatty(pipe) == 1)
    throw Failure(kUsage, name, "is a terminal; send it a file or a program's output");
  auto content = std::make_shared<UnnamedFile>();
  bool is_reading = true;
  const bool is_copied = copy_bytes(pipe, content->descriptor(), is_reading);
  const int why = errno;
  if (!is_standard_input) close(pipe);
  if (!is_copied)
    throw Failure(is_reading ? kBadInput : kWriteError, name,
                  (is_reading ? "" : "cannot be held on the disk for temporary files: ") +
                      std::string(std::strerror(why)));
  call_in_messages(content->path(), name);
  return content;
}

}  // namespace corvin::cli
