// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What outside readers make of the files. A witness that is not installed is skipped.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/sound_files.h"

namespace corvin::studio {
namespace {

namespace fs = std::filesystem;

std::string output(const std::string& command, int& status) {
  std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  std::string text;
  std::array<char, 4096> buffer;
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
    text.append(buffer.data(), count);
  }
  status = pclose(pipe);
  return text;
}

bool installed(const std::string& tool) {
  int status = 0;
  output("command -v " + tool, status);
  return status == 0;
}

class Witness : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder_); }
  void TearDown() override { fs::remove_all(folder_); }

  fs::path write(corvin_container container, std::uint32_t channels, std::size_t bytes,
                 const DSD_TAG* tag = nullptr) {
    Random random(1);
    const fs::path path = folder_ / (std::to_string(channels) + "_" + std::to_string(bytes) +
                                     (container == CORVIN_DSF ? ".dsf" : ".dff"));
    Writer writer(path.c_str(), writer_settings(container, channels));
    const Bytes sound = random.bytes(bytes * channels);
    writer.write(sound.data(), bytes);
    if (tag != nullptr) writer.set_tags(*tag);
    writer.finish(bytes * 8);
    return path;
  }

  fs::path folder_ =
      fs::path(::testing::TempDir()) / ("corvin_file_witness_" + std::to_string(getpid()));
};

TEST_F(Witness, MediaInspectorReadsEveryChannelCount) {
  if (!installed("mediainfo")) GTEST_SKIP() << "mediainfo is not installed";
  for (const corvin_container container : {CORVIN_DSDIFF, CORVIN_DSF}) {
    for (const std::uint32_t channels : {1u, 2u, 5u, 6u}) {
      const fs::path path = write(container, channels, 352800);
      int status = 0;
      const std::string said =
          output("mediainfo '--Inform=Audio;%Format% %SamplingRate% %Channel(s)% %Duration%' " +
                     path.string(),
                 status);
      EXPECT_EQ(said.rfind("DSD 2822400 " + std::to_string(channels) + " 1000", 0), 0u)
          << path << said;
    }
  }
}

// The archiver keeps everything that it does not know about a file beside the sound, and checks the
// sizes that the headers state.
TEST_F(Witness, ArchiverGivesBackEveryByte) {
  if (!installed("wavpack") || !installed("wvunpack")) GTEST_SKIP() << "wavpack is not installed";
  for (const corvin_container container : {CORVIN_DSDIFF, CORVIN_DSF}) {
    for (const std::uint32_t channels : {1u, 2u, 3u, 6u}) {
      for (const std::size_t bytes : {4096u, 10001u}) {
        const fs::path path = write(container, channels, bytes);
        const fs::path packed = folder_ / "packed.wv";
        const fs::path back = folder_ / ("back" + path.extension().string());
        int status = 0;
        const std::string said =
            output("wavpack -q -y " + path.string() + " -o " + packed.string() +
                       " && wvunpack -q -y " + packed.string() + " -o " + back.string() +
                       " && cmp " + path.string() + " " + back.string(),
                   status);
        EXPECT_EQ(status, 0) << path << said;
      }
    }
  }
}

#ifdef CORVIN_MUTAGEN_PYTHON
TEST_F(Witness, TagLibraryReadsTags) {
  DSD_TAG tag{};
  std::strcpy(tag.title, "T\xc3\xaftle");
  for (const corvin_container container : {CORVIN_DSDIFF, CORVIN_DSF}) {
    const fs::path path = write(container, 2, 70560, &tag);
    const std::string module = container == CORVIN_DSF ? "dsf.DSF" : "dsdiff.DSDIFF";
    int status = 0;
    const std::string said =
        output(std::string(CORVIN_MUTAGEN_PYTHON " -c 'import mutagen.dsf, mutagen.dsdiff\n") +
                   "f = mutagen." + module + "(\"" + path.string() + "\")\n" +
                   "print(f.tags[\"TIT2\"].text[0].encode().hex(), f.info.channels, " +
                   "f.info.sample_rate, round(f.info.length, 6))'",
               status);
    EXPECT_EQ(said, "54c3af746c65 2 2822400 0.2\n");
  }
}
#endif

}  // namespace
}  // namespace corvin::studio
