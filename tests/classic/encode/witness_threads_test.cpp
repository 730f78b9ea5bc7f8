// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What outside readers make of our files. A witness that is not installed is skipped.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "corvin.h"
#include "tests/support/temp_file.h"

namespace {

namespace fs = std::filesystem;

/// What a command prints; its exit status in `status`.
std::string Output(const std::string& command, int& status) {
  std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  std::string text;
  std::array<char, 4096> buffer;
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
    text.append(buffer.data(), count);
  status = pclose(pipe);
  return text;
}

bool Installed(const std::string& tool) {
  int status = 0;
  Output("command -v " + tool, status);
  return status == 0;
}

class Witness : public testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder_); }
  void TearDown() override { fs::remove_all(folder_); }

  /// Stereo, 44100 to 2822400.
  fs::path Encode(int mode, int frames) {
    std::FILE* const pcm = std::tmpfile();
    for (int i = 0; i < frames; ++i) {
      const int sample = static_cast<int>(8000 * std::sin(0.1 * i));
      for (int c = 0; c < 2; ++c) {
        std::fputc(sample >> 8 & 255, pcm);
        std::fputc(sample & 255, pcm);
      }
    }
    std::rewind(pcm);
    AudioStreamBasicDescription format{};
    format.mSampleRate = 44100;
    format.mChannelsPerFrame = 2;
    format.mBitsPerChannel = 16;
    fs::path path = folder_ / (std::to_string(frames) + (mode == 1 ? ".dff" : ".dsf"));
    EXPECT_EQ(
        PCMtoDSD(mode, 4LL * frames, pcm, path.c_str(), 2822400, nullptr, format, nullptr, nullptr),
        0);
    std::fclose(pcm);
    return path;
  }

  fs::path folder_ = fs::path(testing::TempDir()) / ("corvin_witness_" + std::to_string(getpid()));
};

TEST_F(Witness, MediaInspectorReadsTheHeaders) {
  if (!Installed("mediainfo")) GTEST_SKIP() << "mediainfo is not installed";
  for (const int mode : {1, 2}) {
    const fs::path path = Encode(mode, 44100);
    int status = 0;
    const std::string audio =
        Output("mediainfo '--Inform=Audio;%Format% %SamplingRate% %Channel(s)% %Duration%' " +
                   path.string(),
               status);
    EXPECT_EQ(audio.rfind("DSD 2822400 2 1000", 0), 0u) << audio;
    EXPECT_EQ(Output("mediainfo '--Inform=General;%Format%' " + path.string(), status),
              mode == 1 ? "DSDIFF\n" : "DSF\n");
  }
}

// A full last block, a short one, and sound that ends within a byte.
TEST_F(Witness, ArchiverGivesBackEveryByte) {
  if (!Installed("wavpack") || !Installed("wvunpack")) GTEST_SKIP() << "wavpack is not installed";
  for (const int mode : {1, 2}) {
    for (const int frames : {512, 5001}) {
      const fs::path path = Encode(mode, frames);
      const fs::path packed = folder_ / "packed.wv",
                     back = folder_ / ("back" + path.extension().string());
      int status = 0;
      const std::string said =
          Output("wavpack -q -y " + path.string() + " -o " + packed.string() +
                     " && wvunpack -q -y " + packed.string() + " -o " + back.string(),
                 status);
      EXPECT_EQ(status, 0) << said;
      EXPECT_TRUE(corvin::testing::ReadFile(back) == corvin::testing::ReadFile(path))
          << path << said;
    }
  }
}

}  // namespace
