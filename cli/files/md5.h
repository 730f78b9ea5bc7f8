// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The MD5 sum (RFC 1321) by which files of lossless coders let their sound be checked. No secret
// rests on it.

#ifndef CORVIN_CLI_FILES_MD5_H_
#define CORVIN_CLI_FILES_MD5_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace corvin::cli {

class Md5 {
 public:
  void add(std::span<const uint8_t> bytes);

  /** The sum of all that was added, after which nothing can be. */
  std::array<uint8_t, 16> finish();

 private:
  void take_block(const uint8_t* block);

  std::array<uint32_t, 4> state_ = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  std::array<uint8_t, 64> rest_{};  // of bytes that fill no block yet
  uint64_t bytes_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_MD5_H_
