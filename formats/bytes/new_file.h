// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file that takes its name only when it is complete: written beside it under another one and
// renamed then, so that the name never stands for half a file and an older file stays until there
// is a new one.

#ifndef CORVIN_FORMATS_BYTES_NEW_FILE_H_
#define CORVIN_FORMATS_BYTES_NEW_FILE_H_

#include <string>

#include "formats/bytes/byte_source.h"

namespace corvin::formats {

class NewFile : public ByteSink {
 public:
  NewFile() = default;
  /// Removes the file unless it was committed.
  ~NewFile() override;
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Begins a file that is to be called `path`; where that leads through symbolic links, the link
  /// stays, and so does the mode of an older file. False, with errno, when it cannot be made or the
  /// name is that of something else than a regular file. Throws std::bad_alloc.
  bool Open(const char* path);

  bool Write(std::uint64_t offset, const void* from, std::size_t bytes) override;

  /// Waits until all that was written is on the disk.
  bool Sync();

  /// Gives the file its name, in place of an older one.
  bool Commit();

 private:
  std::string target_;
  std::string temporary_;  // empty when there is none to remove
  int descriptor_ = -1;
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_NEW_FILE_H_
