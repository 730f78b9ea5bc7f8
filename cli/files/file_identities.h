// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files told apart by what they are, not by their names: links and other spellings of a path lead to
// the same file.

#ifndef CORVIN_CLI_FILES_FILE_IDENTITIES_H_
#define CORVIN_CLI_FILES_FILE_IDENTITIES_H_

#include <sys/stat.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace corvin::cli {

class FileIdentities {
 public:
  FileIdentities() = default;
  /** Those of `paths` that exist. */
  explicit FileIdentities(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) add(path);
  }

  void add(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) == 0) files_.emplace(status.st_dev, status.st_ino);
  }

  bool has(const struct stat& status) const {
    return files_.contains({status.st_dev, status.st_ino});
  }

 private:
  std::set<std::pair<dev_t, ino_t>> files_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_FILE_IDENTITIES_H_
