// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <utility>

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
  std::string long_utf16 = Raw("\2\0a");
  for (int i = 0; i < 300; ++i) long_utf16 += Raw("\x30\xa2");
  std::string long_utf16_title = "a";  // 1 + 171 x 3 bytes are 514
  for (int i = 0; i < 171; ++i) long_utf16_title += "ア";
  const Row rows[] = {
      {"Latin-1 unconverted", Raw("\0caf\xe9"), "caf\xe9"},
      {"ends at a zero byte", Raw("\0one\0two"), "one"},
      {"UTF-8", "\3café", "café"},
      {"little-endian mark", Raw("\1\xff\xfe\xe9\0a\0"), "éa"},
      {"big-endian mark", Raw("\1\xfe\xff\0\xe9\0a"), "éa"},
      {"no mark", Raw("\1\0\xe9\0a"), "éa"},
      {"big-endian by encoding", Raw("\2\x30\xa2\0a"), "アa"},
      {"mark against the encoding", Raw("\2\xff\xfe\xa2\x30"), "ア"},
      {"ends at a zero unit", Raw("\1\377\376a\0\0\0b\0"), "a"},
      {"odd length", Raw("\2\0a\0"), "a"},
      {"mark only", Raw("\1\xff\xfe"), ""},
      {"surrogate pair", Raw("\2\xd8\x34\xdd\x1e"), "𝄞"},
      {"lone surrogate", Raw("\2\xdd\x1e\0a"), "\uFFFDa"},
      {"half a pair at the end", Raw("\2\0a\xd8\x34"), "a\uFFFD"},
      {"too long Latin-1", Raw("\0") + std::string(600, '\xe9'), std::string(514, '\xe9')},
      {"too long UTF-8", "\3" + std::string(513, 'a') + "é", std::string(513, 'a')},
      {"UTF-8 that just fits", "\3" + std::string(512, 'a') + "éz", std::string(512, 'a') + "é"},
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

TEST(Id3Reader, SkipsUnknownFramesAndTakesTheLastOfAKind) {
  TagRecord tag;
  ASSERT_EQ(ReadTag(Id3Block({Id3Text("TIT2", "title"), Id3Frame("XXXX", "skipped"),
                              Id3Frame("TYER", Raw("\1\xff\xfe\x32\0\x30\0")),
                              Id3Text("TIT2", "last title"), Bytes(64)}),
                    tag),
            0);
  EXPECT_EQ(TextOf(tag.title), "last title");
  EXPECT_EQ(tag.year, 20);
  EXPECT_EQ(ReadTag(Id3Block({Id3Text("TYER", std::string(600, '9'))}), tag), 0);
  EXPECT_EQ(tag.year, INT32_MAX);
}

TEST(Id3Reader, FirstCommentInTheLanguage) {
  TagRecord tag;
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("COMM", Raw("\3eng\0english"))}), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "");
  EXPECT_FALSE(bFindCommentTag);
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("COMM", Raw("\3jpn")),  // no description
                              Id3Frame("COMM", Raw("\1jpn\377\376d\0\0\0\377\376\xa2\x30")),
                              Id3Frame("COMM", Raw("\3jpn\0second"))}),
                    tag),
            0);
  EXPECT_EQ(TextOf(tag.comment), "ア");
  EXPECT_TRUE(bFindCommentTag);
  // The flag does not outlast the read.
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("COMM", Raw("\3jpn\0another"))}), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "another");
}

TEST(Id3Reader, PicturesReplaceThoseFromBefore) {
  TagRecord tag;
  ASSERT_NE(tag.PictureAlloc(3, 5, true), nullptr);
  const std::string long_picture =
      Raw("\0") + std::string(40, 'm') + Raw("\0\4") + std::string(600, 'd') + Raw("\0\0\1\2\3");
  ASSERT_EQ(ReadTag(Id3Block({Id3Frame("APIC", Raw("\1image/png\0\3\xff\xfe\xe9\0\0\0data")),
                              Id3Frame("APIC", "\3no terminator"),
                              Id3Frame("APIC", Raw("\3image/png\0\3no terminator")),
                              Id3Frame("APIC", Raw("\3image/png\0")), Id3Frame("APIC", ""),
                              Id3Frame("APIC", long_picture)}),
                    tag),
            0);
  ASSERT_EQ(tag.pictureCount, 2);
  const DSD_PICTURE& first = *tag.pictures[0];
  EXPECT_STREQ(first.mime, "image/png");
  EXPECT_EQ(first.pictureType, 3);
  EXPECT_STREQ(first.description, "é");
  EXPECT_EQ(std::string(first.data, first.data + first.dataSize), "data");
  EXPECT_EQ(tag.pictures[1]->mime, std::string(31, 'm'));
  EXPECT_EQ(tag.pictures[1]->description, std::string(511, 'd'));
  EXPECT_EQ(tag.pictures[1]->dataSize, 4);

  // A block without pictures leaves them; many tiny frames do not pile up entries.
  ASSERT_EQ(ReadTag(Id3Block({Id3Text("TIT2", "t")}), tag), 0);
  EXPECT_EQ(tag.pictureCount, 2);
  Bytes frames;
  for (int i = 0; i < 1000; ++i) Append(frames, Id3Frame("APIC", Raw("\0\0\3\0")));
  ASSERT_EQ(ReadTag(Id3Block({frames, Id3Text("TIT2", "behind")}), tag), 0);
  EXPECT_EQ(tag.pictureCount, CORVIN_TAG_MAX_PICTURES);
  EXPECT_EQ(TextOf(tag.title), "behind");
}

TEST(Id3Reader, BlocksThatAreNotRead) {
  const Bytes title = Id3Text("TIT2", "title");
  const std::pair<const char*, Bytes> rows[] = {
      {"version 2.2", Id3Block({title}, {}, 2)},
      {"version 2.4", Id3Block({title}, {}, 4)},
      {"something else", Bytes(100, 'x')},
      {"size 0", Id3Block({title}, 0)},
      {"padding only", Id3Block({Bytes(60)})},
      {"less than a frame header", Id3Block({Bytes(9, 'A')})},
      {"lower-case id", Id3Block({Id3Text("Tit2", "title")})},
  };
  TagRecord tag;
  for (const auto& [what, block] : rows) EXPECT_EQ(ReadTag(block, tag), 1) << what;
  rusage before, after;
  getrusage(RUSAGE_SELF, &before);
  EXPECT_EQ(ReadTag(Id3Block({title}, (1u << 28) - 1), tag), -1) << "256 MiB in 26 bytes";
  getrusage(RUSAGE_SELF, &after);
  EXPECT_EQ(TextOf(tag.title), "");
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024);  // KiB
}

TEST(Id3Reader, AFrameEndsWithTheBlockAtTheLatest) {
  for (const std::uint32_t size : {7u, 100u, 0x7fffffffu, 0x80000000u, 0xfffffff7u, 0xffffffffu}) {
    TagRecord tag;
    EXPECT_EQ(ReadTag(Id3Block({Id3Text("TALB", "album"), Id3Frame("TIT2", "\3title", size)}), tag),
              0);
    EXPECT_EQ(TextOf(tag.album), "album");
    EXPECT_EQ(TextOf(tag.title), "title") << size;
  }
}

TEST(Id3Reader, CutAtEveryByte) {
  const Bytes block =
      Id3Block({Id3Frame("TIT2", Raw("\1\xff\xfe\xe9\0a\0\0\0")), Id3Text("TYER", "1999"),
                Id3Frame("COMM", Raw("\1jpn\377\376\0\0\377\376c\0")),
                Id3Frame("APIC", Raw("\1image/png\0\3\xff\xfe\xe9\0\0\0data"))});
  for (std::size_t length = 0; length < block.size(); ++length) {
    TagRecord tag;
    EXPECT_EQ(ReadTag(Bytes(block.begin(), block.begin() + length), tag), -1) << length;
    if (length <= 10) continue;
    // The same with a header that knows of the cut: every end of a frame's insides at the block's.
    const Bytes cut = Id3Block({Bytes(block.begin() + 10, block.begin() + length)});
    EXPECT_EQ(ReadTag(cut, tag), length < 20 ? 1 : 0) << length;
  }
}

TEST(Id3Reader, NullPointersFail) {
  TagRecord tag;
  const StreamPointer stream(std::tmpfile());
  EXPECT_EQ(Read_id3tag_v2(nullptr, &tag), -1);
  EXPECT_EQ(Read_id3tag_v2(stream.get(), nullptr), -1);
  unsigned char text[8] = "\377\376abcd";
  EXPECT_EQ(CutUnicodeBOM(nullptr, 8, text), 0);
  EXPECT_EQ(CutUnicodeBOM(text, 8, nullptr), 0);
}

TEST(Id3Reader, CutsTheMarkOffATextOfFourBytes) {
  const std::pair<std::string, std::string> rows[] = {{"\377\376ab", "ab"},
                                                      {"\376\377abc", "abc"},
                                                      {"\357\273\277a", "a"},
                                                      {"\377\376a", ""},
                                                      {"abcd", ""}};
  for (auto [text, rest] : rows) {
    unsigned char to[8] = {'.'};
    const int length = CutUnicodeBOM(reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()), to);
    EXPECT_EQ(std::string(to, to + length), rest);
    EXPECT_EQ(to[0], rest.empty() ? '.' : rest[0]);
  }
}

TEST(TagRecordPictures, AddedWithinTheirLimits) {
  TagRecord tag;
  EXPECT_EQ(tag.PictureAlloc(0, 5, true), nullptr);
  EXPECT_EQ(tag.PictureAlloc(1, -1, true), nullptr);
  EXPECT_EQ(tag.PictureAlloc(CORVIN_TAG_MAX_PICTURES + 1, 0, true), nullptr);
  ASSERT_NE(tag.PictureAlloc(2, 6, true), nullptr);
  const DSD_PICTURE* added = tag.PictureAlloc(1, 0, true);
  EXPECT_EQ(added, tag.pictures[2]);
  EXPECT_EQ(tag.pictureCount, 3);
  EXPECT_EQ(tag.pictures[1]->data[5], 0);
}

}  // namespace
