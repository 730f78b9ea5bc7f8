// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the C++ header adds to the C functions: owners of tags, hosts' own streams and callables,
// and failures of these.

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/support/sound_files.h"
#include "tests/support/status_of.h"

namespace corvin::studio {
namespace {

constexpr std::uint8_t kCover[] = {0xff, 0xd8, 1, 2, 3};

// A file in memory as a host writes its own; throws once more than `room` bytes are asked for.
class HostFile : public ByteStream {
 public:
  bool seek(std::uint64_t offset) override {
    position_ = static_cast<std::size_t>(offset);
    return true;
  }
  std::int64_t read(std::span<std::byte> to) override {
    const std::size_t count = std::min(to.size(), bytes.size() - std::min(bytes.size(), position_));
    std::memcpy(to.data(), bytes.data() + position_, count);
    position_ += count;
    return static_cast<std::int64_t>(count);
  }
  std::int64_t length() override { return static_cast<std::int64_t>(bytes.size()); }
  bool write(std::span<const std::byte> from) override {
    if (position_ + from.size() > room) throw std::length_error("full");
    bytes.resize(std::max(bytes.size(), position_ + from.size()));
    std::memcpy(bytes.data() + position_, from.data(), from.size());
    position_ += from.size();
    return true;
  }

  Bytes bytes;
  std::size_t room = 1 << 20;

 private:
  std::size_t position_ = 0;
};

Tags some_tags() {
  Tags tags;
  set_text(tags.title, "Title");
  tags.add_picture(3, "image/jpeg", std::as_bytes(std::span(kCover)), "front");
  return tags;
}

void write_file(HostFile& host, const Tags& tags, const Bytes& sound) {
  Writer writer(host, writer_settings(CORVIN_DSF, 1));
  writer.set_tags(tags);
  writer.write(sound.data(), sound.size());
  writer.finish(sound.size() * 8);
}

TEST(Wrapper, TextsThatAreTooLongEndWithACharacter) {
  char field[6];
  set_text(field, "abcd\xc3\xa9");
  EXPECT_EQ(text_of(field), "abcd");
  set_text(field, "x");
  EXPECT_EQ(std::string(field, sizeof field), std::string("x\0\0\0\0\0", 6));
  const char full[3] = {'a', 'b', 'c'};
  EXPECT_EQ(text_of(full), "abc");
  EXPECT_EQ(without_byte_order_mark("\xef\xbb\xbftext"), "text");
  EXPECT_EQ(without_byte_order_mark("text"), "text");
}

TEST(Wrapper, TagsHaveOneOwner) {
  Tags first = some_tags();
  Tags second = std::move(first);
  EXPECT_TRUE(first.all_pictures().empty());
  first.add_picture(4, "image/png", {});
  first = std::move(second);
  ASSERT_EQ(first.all_pictures().size(), 1U);
  EXPECT_EQ(text_of(first.all_pictures()[0]->mime), "image/jpeg");
  EXPECT_EQ(second.pictures, nullptr);
}

TEST(Wrapper, HostsStreamsHoldFilesWithTags) {
  HostFile host;
  const Bytes sound(5000, kIdle);
  write_file(host, some_tags(), sound);
  File file(host);
  const Tags tags = file.tags();
  EXPECT_EQ(text_of(tags.title), "Title");
  ASSERT_EQ(tags.all_pictures().size(), 1U);
  EXPECT_EQ(std::memcmp(tags.all_pictures()[0]->data, kCover, sizeof kCover), 0);
  EXPECT_EQ(read_all(file), sound);

  HostFile copy;
  Writer writer(copy, writer_settings(CORVIN_DSF, 1));
  writer.set_tags(tags);
  convert_copy(file, writer);
  EXPECT_EQ(copy.bytes, host.bytes);
}

TEST(Wrapper, WhatHostsThrowIsAFailure) {
  HostFile full;
  full.room = 3000;
  EXPECT_EQ(status_of([&] { write_file(full, {}, Bytes(5000, kIdle)); }), CORVIN_E_WRITE);

  HostFile host;
  write_file(host, {}, Bytes(5000, kIdle));
  File file(host);
  const PcmSink thrower = {.begin = {}, .write = [](const void*, std::size_t) -> bool {
                             throw std::runtime_error("no");
                           }};
  EXPECT_EQ(status_of([&] { convert_to_pcm(file, thrower); }), CORVIN_E_WRITE);
  try {
    File missing("no/such/file");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.status(), CORVIN_E_READ);
    EXPECT_EQ(error.system_error(), ENOENT);
  }
}

TEST(Wrapper, TracksComeFromCallables) {
  HostFile hosts[2];
  std::vector<Writer> writers;
  for (HostFile& host : hosts) writers.emplace_back(host, writer_settings(CORVIN_DSDIFF, 1));
  std::int64_t left[] = {300, 20};
  std::vector<PcmSource> zeros;
  for (std::int64_t& frames : left) {
    zeros.push_back({.channels = 1, .format = CORVIN_S16, .read = [&](void* to, std::size_t count) {
                       const auto now = std::min(frames, static_cast<std::int64_t>(count));
                       frames -= now;
                       std::memset(to, 0, 2 * static_cast<std::size_t>(now));
                       return now;
                     }});
  }
  EXPECT_EQ(convert_to_dsd_tracks(zeros, writers).finished, 2U);
  EXPECT_EQ(File(hosts[0]).info().samples, 64U * 300);
  EXPECT_EQ(File(hosts[1]).info().samples, 64U * 20);
}

TEST(Wrapper, ConversionsCallCallables) {
  HostFile host;
  Writer writer(host, writer_settings(CORVIN_DSF, 1));
  std::int64_t left = 20000;
  const PcmSource zeros = {
      .channels = 1, .format = CORVIN_S16, .read = [&](void* frames, std::size_t count) {
        const auto now = std::min(left, static_cast<std::int64_t>(count));
        left -= now;
        std::memset(frames, 0, 2 * static_cast<std::size_t>(now));
        return now;
      }};
  EXPECT_EQ(convert_to_dsd(zeros, writer).samples, 64U * 20000);

  File file(host);
  std::size_t announced = 0;
  std::size_t frames = 0;
  const PcmSink sink = {.begin =
                            [&](const corvin_pcm_format& format) {
                              announced = static_cast<std::size_t>(format.frames);
                              return true;
                            },
                        .write =
                            [&](const void*, std::size_t count) {
                              frames += count;
                              return true;
                            }};
  EXPECT_EQ(convert_to_pcm(file, sink).frames, 20000U);
  EXPECT_EQ(announced, 20000U);
  EXPECT_EQ(frames, 20000U);

  frames = 0;
  try {
    convert_to_pcm(file, sink, ConvertSettings(),
                   [](std::uint64_t done, std::uint64_t total) { return done < total / 2; });
    FAIL();
  } catch (const ConvertError& error) {
    EXPECT_EQ(error.status(), CORVIN_E_CANCELLED);
    EXPECT_EQ(error.report().frames, frames);
  }
}

}  // namespace
}  // namespace corvin::studio
