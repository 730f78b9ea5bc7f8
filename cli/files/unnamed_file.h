// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What comes from a pipe or goes to one, on its way through the disk: most kinds of sound files can
// be read or completed only by going back. The file has no name, so whatever ends the tool ends it.

#ifndef CORVIN_CLI_FILES_UNNAMED_FILE_H_
#define CORVIN_CLI_FILES_UNNAMED_FILE_H_

#include <string>

namespace corvin::cli {

class UnnamedFile {
 public:
  /** Makes an empty file in the directory for temporary ones ($TMPDIR, else /tmp). Throws Failure. */
  UnnamedFile();
  ~UnnamedFile();
  UnnamedFile(const UnnamedFile&) = delete;
  UnnamedFile& operator=(const UnnamedFile&) = delete;

  int descriptor() const { return descriptor_; }

  /** By which others can open it while this lives. */
  std::string path() const;

 private:
  int descriptor_ = -1;
};

/** Copies what is left of one open file behind what is in another; false on failure, errno tells
 *  why, and `is_reading` whether it was the first one's. */
bool copy_bytes(int from, int to, bool& is_reading);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_UNNAMED_FILE_H_
