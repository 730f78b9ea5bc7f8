// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Sound for the tests of files, and ways to get it into a file and out again.

#ifndef CORVIN_TESTS_SUPPORT_SOUND_FILES_H_
#define CORVIN_TESTS_SUPPORT_SOUND_FILES_H_

#include <cstdint>
#include <vector>

#include "corvin.hpp"
#include "tests/support/memory_stream.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {

using testing::MemoryStream;

constexpr corvin_container kContainers[] = {CORVIN_DSDIFF, CORVIN_DSF, CORVIN_ONE_BIT};

inline WriterSettings writer_settings(corvin_container container, std::uint32_t channels,
                                      std::uint32_t rate = 2822400) {
  WriterSettings settings;
  settings.container = container;
  settings.channels = channels;
  settings.dsd_rate = rate;
  return settings;
}

/// A file of interleaved sound, earliest sample in the most significant bit.
inline Bytes file_of(const corvin_writer_settings& settings, const Bytes& sound,
                     std::uint64_t samples, const DSD_TAG* tag = nullptr) {
  MemoryStream stream;
  Writer writer(stream.callbacks(), settings);
  writer.write(sound.data(), sound.size() / settings.channels);
  if (tag != nullptr) writer.set_tags(*tag);
  writer.finish(samples);
  return stream.bytes;
}

inline Bytes file_of(const corvin_writer_settings& settings, const Bytes& sound) {
  return file_of(settings, sound, sound.size() / settings.channels * 8);
}

/// A file in memory, open.
struct MemoryFile : MemoryStream, File {
  explicit MemoryFile(Bytes content) : MemoryStream(std::move(content)), File(callbacks()) {}
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
};

inline corvin_convert_report empty_report() {
  corvin_convert_report report = {};
  report.size = sizeof report;
  return report;
}

/// All that is left to read, interleaved, in parts that `random` chooses, if there is one.
inline Bytes read_all(File& file, corvin_bit_order order = CORVIN_MSB_FIRST,
                      Random* random = nullptr) {
  const std::size_t channels = file.info().channels;
  Bytes all;
  for (;;) {
    const std::size_t count = random == nullptr ? 30000 : (*random)() % 9000 + 1;
    const std::size_t before = all.size();
    all.resize(before + count * channels);
    const std::size_t done = file.read(all.data() + before, count, order);
    all.resize(before + done * channels);
    if (done < count) return all;
  }
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_SOUND_FILES_H_
