// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole pieces of a file by its descriptor, which keeps its position.

#ifndef CORVIN_CLI_FILES_DESCRIPTOR_BYTES_H_
#define CORVIN_CLI_FILES_DESCRIPTOR_BYTES_H_

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>

namespace corvin::cli {

/** Writes all; false on failure, errno tells why. */
inline bool write_at(int descriptor, uint64_t offset, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written =
        pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = EIO;
    if (written <= 0) return false;
    bytes = bytes.subspan(static_cast<size_t>(written));
    offset += static_cast<uint64_t>(written);
  }
  return true;
}

/** Reads up to the end of the file or of `bytes`; returns how many there were, -1 on failure. */
inline int64_t read_at(int descriptor, uint64_t offset, std::span<std::byte> bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t got = pread(descriptor, bytes.data() + done, bytes.size() - done,
                              static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return static_cast<int64_t>(done);
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_DESCRIPTOR_BYTES_H_
