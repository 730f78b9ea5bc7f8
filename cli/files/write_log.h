// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What has been written to a file and where, by hashes, to be compared with what the file has.

#ifndef CORVIN_CLI_FILES_WRITE_LOG_H_
#define CORVIN_CLI_FILES_WRITE_LOG_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvin::cli {

class WriteLog {
 public:
  void add(uint64_t offset, std::span<const std::byte> bytes);

  /** Whether the open file has all that was written and not overwritten since. What is only partly
   *  overwritten, as a header may be, counts by its last writing. False when it cannot be read. */
  bool is_in(int descriptor) const;

 private:
  struct Piece {
    uint64_t offset;
    uint64_t size;
    uint64_t hash;
  };
  std::vector<Piece> pieces_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_WRITE_LOG_H_
