// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "corvin.h"
#include "tests/support/id3_blocks.h"
#include "tests/support/tag_record.h"

namespace {

using namespace corvin::testing;

void FillTag(TagRecord& tag) {
  std::strcpy(tag.title, "Tïtle");
  std::strcpy(tag.artist, "Artist");
  std::strcpy(tag.album, "アlbum");
  tag.year = 2011;
  std::strcpy(tag.comment, "A comment");
  std::strcpy(tag.track, "3/12");
  std::strcpy(tag.genre, "Jazz");
  std::strcpy(tag.composer, "Composer");
  std::strcpy(tag.rightsNotice, "2011 Someone");
  for (int i = 0; i < 2; ++i) {
    DSD_PICTURE& picture = *tag.PictureAlloc(1, 300 + i, true);
    std::strcpy(picture.mime, "image/png");
    std::strcpy(picture.description, i == 0 ? "front" : "bäck");
    picture.pictureType = static_cast<std::uint8_t>(3 + i);
    for (int k = 0; k < picture.dataSize; ++k) picture.data[k] = static_cast<std::uint8_t>(k * 7);
  }
}

TEST(Id3Writer, BlocksByteForByte) {
  TagRecord tag;
  EXPECT_EQ(WriteTag(tag), Id3Block({}));
  FillTag(tag);
  tag.pictures[0]->dataSize = 0;
  tag.pictures[1]->dataSize = 3;
  EXPECT_EQ(WriteTag(tag), Id3Block({Id3Text("TIT2", "Tïtle"), Id3Text("TPE1", "Artist"),
                                     Id3Text("TALB", "アlbum"), Id3Text("TYER", "2011"),
                                     Id3Frame("COMM", Raw("\3jpn\0A comment")),
                                     Id3Text("TRCK", "3/12"), Id3Text("TCON", "Jazz"),
                                     Id3Text("TCOM", "Composer"), Id3Text("TCOP", "2011 Someone"),
                                     Id3Frame("APIC", Raw("\3image/png\0\4bäck\0\0\7\16"))}));
}

// The last byte of a field is text when the field is full; nothing behind it is.
TEST(Id3Writer, FieldsWithoutATerminator) {
  TagRecord tag;
  std::memset(tag.title, 'a', sizeof tag.title);
  std::memset(tag.rightsNotice, 'z', sizeof tag.rightsNotice);
  ASSERT_NE(tag.PictureAlloc(1, 1, true), nullptr);
  std::memset(tag.pictures[0]->mime, 'm', sizeof tag.pictures[0]->mime);
  std::memset(tag.pictures[0]->description, 'd', sizeof tag.pictures[0]->description);
  EXPECT_EQ(WriteTag(tag), Id3Block({Id3Frame("TIT2", "\3" + std::string(514, 'a')),
                                     Id3Frame("TCOP", "\3" + std::string(514, 'z')),
                                     Id3Frame("APIC", "\3" + std::string(32, 'm') + Raw("\0\0") +
                                                          std::string(512, 'd') + Raw("\0\0"))}));
}

TEST(Id3Writer, RecordsThatMakeNoBlockOrNoPicture) {
  TagRecord tag;
  ASSERT_NE(tag.PictureAlloc(2, 4, false), nullptr);
  const StreamPointer stream(std::tmpfile());
  const auto with_size = [&](std::int32_t size) {
    tag.pictures[0]->dataSize = size;
    tag.pictures[1]->dataSize = size;
    return Write_id3tag_v2(stream.get(), &tag);
  };
  EXPECT_EQ(with_size(-5), 10);
  EXPECT_EQ(Write_id3tag_v2(nullptr, &tag), -1);
  EXPECT_EQ(Write_id3tag_v2(stream.get(), nullptr), -1);
  // Measured only: the size has 28 bits, so no byte of the data is touched.
  EXPECT_EQ(with_size(1 << 27), -1);
  EXPECT_EQ(with_size(INT32_MAX), -1);
  EXPECT_EQ(std::ftell(stream.get()), 10);
  std::free(std::exchange(tag.pictures[1]->data, nullptr));
  EXPECT_EQ(with_size(4), 10 + 14 + 4);
}

TEST(Id3Writer, TheReaderGetsBackWhatWasWritten) {
  TagRecord tag;
  FillTag(tag);
  const Bytes block = WriteTag(tag);
  TagRecord again;
  ASSERT_EQ(ReadTag(block, again), 0);
  EXPECT_EQ(WriteTag(again), block);
}

}  // namespace
