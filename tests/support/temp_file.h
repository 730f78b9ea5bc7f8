// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file for the length of a test.

#ifndef CORVIN_TESTS_SUPPORT_TEMP_FILE_H_
#define CORVIN_TESTS_SUPPORT_TEMP_FILE_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace corvin::testing {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using StreamPointer = std::unique_ptr<std::FILE, CloseFile>;

/// All that a stream holds up to where it stands; it then stands there again.
inline std::vector<std::uint8_t> ReadBack(std::FILE* stream) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::ftell(stream)));
  std::rewind(stream);
  EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), stream), bytes.size());
  return bytes;
}

inline std::vector<std::uint8_t> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(file), {});
}

/// A path of its own that is removed at the end; the file exists once it is written.
class TempFile {
 public:
  TempFile()
      : path_(::testing::TempDir() + "corvin_" + std::to_string(getpid()) + "_" +
              std::to_string(counter_++)) {}
  explicit TempFile(const std::vector<std::uint8_t>& bytes) : TempFile() { Write(bytes); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  ~TempFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  void Write(const std::vector<std::uint8_t>& bytes) const {
    std::ofstream file(path_, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.flush()) << path_;
  }

  const char* path() const { return path_.c_str(); }

 private:
  static inline std::atomic<int> counter_{0};
  std::string path_;
};

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_TEMP_FILE_H_
