// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>

#include "corvin.h"
#include "tests/support/id3_blocks.h"
#include "tests/support/tag_record.h"

namespace {

using namespace corvin::testing;

TEST(Id3Reader, EncodingsOfATitle) {
  struct Row {
    const char* what;
    std::string body;
    std::string title;
  };
  const std::string long_latin1 = "\1" + std::string(600, '\xe9');
  std::string long_utf16 = Raw("\2\0a");
  for (int i = 0; i < 300; ++i) long_utf16 += Raw("\x30\xa2");
  std::string long_utf16_title = "a";  // 1 + 171 x 3 bytes are 514
  for (int i = 0; i < 171; ++i) long_utf16_title += "\xe3\x82\xa2";
  const Row rows[] = {
      {"Latin-1 unconverted", Raw("\0caf\xe9"), "caf\xe9"},
      {"ends at a zero byte", Raw("\0one\0two"), "one"},
      {"UTF-8", "\3caf\xc3\xa9", "caf\xc3\xa9"},
      {"little-endian mark", Raw("\1\xff\xfe\xe9\0a\0"),
       "\xc3\xa9"
       "a"},
      {"big-endian mark", Raw("\1\xfe\xff\0\xe9\0a"),
       "\xc3\xa9"
       "a"},
      {"no mark", Raw("\1\0\xe9\0a"),
       "\xc3\xa9"
       "a"},
      {"big-endian by encoding", Raw("\2\x30\xa2\0a"),
       "\xe3\x82\xa2"
       "a"},
      {"mark against the encoding", Raw("\2\xff\xfe\xa2\x30"), "\xe3\x82\xa2"},
      {"ends at a zero unit",
       Raw("\1\xff\xfe"
           "a\0\0\0b\0"),
       "a"},
      {"odd length", Raw("\2\0a\0"), "a"},
      {"one byte", Raw("\1\xff"), ""},
      {"mark only", Raw("\1\xff\xfe"), ""},
      {"surrogate pair", Raw("\2\xd8\x34\xdd\x1e"), "\xf0\x9d\x84\x9e"},
      {"lone surrogate", Raw("\2\xdd\x1e\0a"),
       "\xef\xbf\xbd"
       "a"},
      {"half a pair at the end", Raw("\2\0a\xd8\x34"), "a\xef\xbf\xbd"},
      {"too long Latin-1", Raw("\0") + std::string(600, '\xe9'), std::string(514, '\xe9')},
      {"too long UTF-8", "\3" + std::string(513, 'a') + "\xc3\xa9", std::string(513, 'a')},
      {"UTF-8 that just fits", "\3" + std::string(512, 'a') + "\xc3\xa9z",
       std::string(512, 'a') + "\xc3\xa9"},
      {"too long UTF-16", long_utf16, long_utf16_title},
      {"unknown encoding", "\4text", "before"},
      {"no encoding", "", "before"},
      {"empty", Raw("\0"), ""},
  };
  for (const Row& row : rows) {
    TagRecord tag;
    std::strcpy(tag.title, "before");
    EXPECT_EQ(ReadTag(Id3Block({Id3Frame("TIT2", row.body)}), tag), 0) << row.what;
    EXPECT_EQ(TextOf(tag.title), row.title) << row.what;
    EXPECT_EQ(TextOf(tag.artist), "") << row.what;
  }
}

TEST(Id3Reader, FramesGoToTheirFields) {
  TagRecord tag;
  ASSERT_EQ(
      ReadTag(Id3Block({Id3Frame("TIT2", "\3title"),
                        Id3Frame("TPE1",
                                 "\3"
                                 "artist"),
                        Id3Frame("TALB",
                                 "\3"
                                 "album"),
                        Id3Frame("TRCK",
                                 "\3"
                                 "4"),
                        Id3Frame("TCON", "\3genre"),
                        Id3Frame("TCOM",
                                 "\3"
                                 "composer"),
                        Id3Frame("TCOP", "\3rights"),
                        Id3Frame("TYER",
                                 "\3"
                                 "1999"),
                        Id3Frame("XXXX", "skipped"), Id3Frame("TIT2", "\3last title"), Bytes(64)}),
              tag),
      0);
  EXPECT_EQ(TextOf(tag.title), "last title");
  EXPECT_EQ(TextOf(tag.artist), "artist");
  EXPECT_EQ(TextOf(tag.album), "album");
  EXPECT_EQ(TextOf(tag.track), "4");
  EXPECT_EQ(TextOf(tag.genre), "genre");
  EXPECT_EQ(TextOf(tag.composer), "composer");
  EXPECT_EQ(TextOf(tag.rightsNotice), "rights");
  EXPECT_EQ(tag.year, 1999);
  EXPECT_EQ(ReadTag(Id3Block({Id3Frame("TYER", Raw("\1\xff\xfe"
                                                   "2\0"
                                                   "0\0"))}),
                    tag),
            0);
  EXPECT_EQ(tag.year, 20);
  EXPECT_EQ(ReadTag(Id3Block({Id3Frame("TYER", "\3" + std::string(600, '9'))}), tag), 0);
  EXPECT_EQ(tag.year, INT32_MAX);
}

TEST(Id3Reader, FirstCommentInTheLanguage) {
  TagRecord tag;
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("COMM", Raw("\3eng\0english"))}), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "");
  EXPECT_FALSE(bFindCommentTag);
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("COMM", Raw("\3jpn")),  // no description
                              Id3Frame("COMM", Raw("\3eng\0english")),
                              Id3Frame("COMM", Raw("\1jpn\xff\xfe"
                                                   "d\0\0\0\xff\xfe\xa2\x30")),
                              Id3Frame("COMM", Raw("\3jpn\0second"))}),
                    tag),
            0);
  EXPECT_EQ(TextOf(tag.comment), "\xe3\x82\xa2");
  EXPECT_TRUE(bFindCommentTag);
  // The flag does not outlast the read.
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("COMM", Raw("\3jpn\0another"))}), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "another");
}

TEST(Id3Reader, Pictures) {
  TagRecord tag;
  ASSERT_NE(tag.PictureAlloc(3, 5, true), nullptr);
  const std::string long_mime(40, 'm');
  const std::string long_text(600, 'd');
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("APIC", Raw("\1image/png\0\3\xff\xfe\xe9\0\0\0data")),
                              Id3Frame("APIC", "\3no terminator"),
                              Id3Frame("APIC", Raw("\3image/png\0\3no terminator")),
                              Id3Frame("APIC", Raw("\3image/png\0")), Id3Frame("APIC", ""),
                              Id3Frame("APIC", Raw("\0") + long_mime + Raw("\0\4") + long_text +
                                                   Raw("\0\0\1\2\3"))}),
                    tag),
            0);
  ASSERT_EQ(tag.pictureCount, 2) << "those from before are replaced";
  const DSD_PICTURE& first = *tag.pictures[0];
  EXPECT_STREQ(first.mime, "image/png");
  EXPECT_EQ(first.pictureType, 3);
  EXPECT_STREQ(first.description, "\xc3\xa9");
  EXPECT_EQ(std::string(first.data, first.data + first.dataSize), "data");
  const DSD_PICTURE& second = *tag.pictures[1];
  EXPECT_EQ(second.mime, long_mime.substr(0, 31));
  EXPECT_EQ(second.description, long_text.substr(0, 511));
  EXPECT_EQ(second.dataSize, 4);

  // A block without pictures leaves them; many tiny frames do not pile up entries.
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("TIT2", "\3t")}), tag), 0);
  EXPECT_EQ(tag.pictureCount, 2);
  Bytes frames;
  for (int i = 0; i < 1000; ++i) Append(frames, Id3Frame("APIC", Raw("\0\0\3\0")));
  ASSERT_EQ(ReadTag(Id3Block({frames, Id3Frame("TIT2",
                                               "\3"
                                               "behind")}),
                    tag),
            0);
  EXPECT_EQ(tag.pictureCount, CORVIN_TAG_MAX_PICTURES);
  EXPECT_EQ(TextOf(tag.title), "behind");
}

TEST(Id3Reader, BlocksThatAreNotRead) {
  const Bytes title = Id3Frame("TIT2", "\3title");
  Bytes padding_only(60);
  struct Row {
    const char* what;
    Bytes block;
    int result;
  };
  const Row rows[] = {
      {"version 2.2", Id3Block({title}, {}, 2), 1},
      {"version 2.4", Id3Block({title}, {}, 4), 1},
      {"something else", Bytes(100, 'x'), 1},
      {"nothing", {}, -1},
      {"size 0", Id3Block({title}, 0), 1},
      {"padding only", Id3Block({padding_only}), 1},
      {"less than a frame header", Id3Block({Bytes(9, 'A')}), 1},
      {"lower-case id", Id3Block({Id3Frame("Tit2", "\3title")}), 1},
      {"256 MiB in 26 bytes", Id3Block({title}, (1u << 28) - 1), -1},
  };
  for (const Row& row : rows) {
    TagRecord tag;
    rusage before;
    rusage after;
    getrusage(RUSAGE_SELF, &before);
    EXPECT_EQ(ReadTag(row.block, tag), row.result) << row.what;
    getrusage(RUSAGE_SELF, &after);
    EXPECT_EQ(TextOf(tag.title), "") << row.what;
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024) << row.what;  // KiB
  }
}

// A frame ends with the block at the latest.
TEST(Id3Reader, FrameSizesBeyondTheBlock) {
  for (const std::uint32_t size :
       {7u, 100u, 0x7ffffff5u, 0x7fffffffu, 0x80000000u, 0xfffffff6u, 0xfffffff7u, 0xffffffffu}) {
    TagRecord tag;
    EXPECT_EQ(ReadTag(Id3Block({Id3Frame("TALB",
                                         "\3"
                                         "album"),
                                Id3Frame("TIT2", "\3title", size)}),
                      tag),
              0);
    EXPECT_EQ(TextOf(tag.album), "album");
    EXPECT_EQ(TextOf(tag.title), "title") << size;
    const std::string picture = Raw("\3image/png\0\3\0data");
    EXPECT_EQ(ReadTag(Id3Block({Id3Frame("APIC", picture, size + 40)}), tag), 0);
    ASSERT_EQ(tag.pictureCount, size + 40 < 100 && size + 40 < picture.size() ? 0 : 1) << size;
  }
}

TEST(Id3Reader, CutAtEveryByte) {
  const Bytes block = Id3Block({Id3Frame("TIT2", Raw("\1\xff\xfe\xe9\0a\0\0\0")),
                                Id3Frame("TYER",
                                         "\3"
                                         "1999"),
                                Id3Frame("COMM", Raw("\1jpn\xff\xfe\0\0\xff\xfe"
                                                     "c\0")),
                                Id3Frame("APIC", Raw("\1image/png\0\3\xff\xfe\xe9\0\0\0data"))});
  for (std::size_t length = 0; length < block.size(); ++length) {
    TagRecord tag;
    EXPECT_EQ(ReadTag(Bytes(block.begin(), block.begin() + length), tag), -1) << length;
    if (length <= 10) continue;
    // The same with a header that knows of the cut: every end of a frame's insides at the block's.
    Bytes cut = Id3Block({Bytes(block.begin() + 10, block.begin() + length)});
    const int result = ReadTag(cut, tag);
    EXPECT_EQ(result, length < 20 ? 1 : 0) << length;
  }
}

TEST(Id3Reader, StreamThatCannotSeek) {
  const Bytes block = Id3Block({Id3Frame("TIT2", "\3title")});
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], block.data(), block.size()), static_cast<ssize_t>(block.size()));
  close(ends[1]);
  const StreamPointer stream(fdopen(ends[0], "rb"));
  TagRecord tag;
  EXPECT_EQ(Read_id3tag_v2(stream.get(), &tag), 0);
  EXPECT_EQ(TextOf(tag.title), "title");
}

TEST(Id3Reader, CutsTheMarkOffAText) {
  const auto cut = [](std::string text) {
    std::string to(text.size(), '.');
    const int length =
        CutUnicodeBOM(reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size()), reinterpret_cast<unsigned char*>(to.data()));
    return length == 0 && to != std::string(to.size(), '.') ? "touched" : to.substr(0, length);
  };
  EXPECT_EQ(cut("\xff\xfe"
                "ab"),
            "ab");
  EXPECT_EQ(cut("\xfe\xff"
                "abc"),
            "abc");
  EXPECT_EQ(cut("\xef\xbb\xbf"
                "a"),
            "a");
  EXPECT_EQ(cut("\xff\xfe"
                "a"),
            "");
  EXPECT_EQ(cut("abcd"), "");
}

TEST(TagRecordPictures, Alloc) {
  TagRecord tag;
  EXPECT_EQ(tag.PictureAlloc(0, 5, true), nullptr);
  EXPECT_EQ(tag.PictureAlloc(1, -1, true), nullptr);
  EXPECT_EQ(tag.PictureAlloc(CORVIN_TAG_MAX_PICTURES + 1, 0, true), nullptr);
  EXPECT_EQ(tag.pictures, nullptr);
  const DSD_PICTURE* added = tag.PictureAlloc(2, 6, true);
  EXPECT_EQ(added, tag.pictures[0]);
  DSD_PICTURE* kept = tag.pictures[1];
  added = tag.PictureAlloc(1, 0, true);
  EXPECT_EQ(added, tag.pictures[2]);
  EXPECT_EQ(tag.pictureCount, 3);
  EXPECT_EQ(tag.pictures[1], kept);
  EXPECT_EQ(kept->dataSize, 6);
  EXPECT_EQ(kept->data[5], 0);
  EXPECT_EQ(tag.pictures[2]->data, nullptr);
  EXPECT_NE(tag.PictureAlloc(1, 1, false), nullptr);
  EXPECT_EQ(tag.pictureCount, 1);
  EXPECT_EQ(tag.PictureAlloc(0, 0, false), nullptr);
  EXPECT_EQ(tag.pictureCount, 0);
}

}  // namespace
