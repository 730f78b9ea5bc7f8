// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "corvin.h"
#include "tests/support/dsd_files.h"
#include "tests/support/id3_blocks.h"
#include "tests/support/tag_record.h"
#include "tests/support/temp_file.h"

namespace {

using namespace corvin::testing;

/// The record holds something of every sort before the call.
int Query(const Bytes& bytes, TagRecord& tag) {
  std::strcpy(tag.title, "before");
  tag.year = 1;
  EXPECT_NE(tag.PictureAlloc(1, 5, true), nullptr);
  return DSDTag(TempFile(bytes).path(), &tag);
}

void ExpectEmpty(const TagRecord& tag) {
  EXPECT_EQ(TextOf(tag.title), "");
  EXPECT_EQ(tag.year, 0);
  EXPECT_EQ(tag.pictureCount, 0);
  EXPECT_EQ(tag.pictures, nullptr);
}

struct Comment {
  std::uint16_t year, type, reference;
  std::string text;
  std::optional<std::uint32_t> length = {};
};

Bytes CommentChunk(const std::vector<Comment>& comments, std::optional<std::uint64_t> size = {}) {
  Bytes body;
  AppendBig(body, comments.size(), 2);
  for (const Comment& comment : comments) {
    AppendBig(body, comment.year, 2);
    AppendBig(body, 0x01020304, 4);
    AppendBig(body, comment.type, 2);
    AppendBig(body, comment.reference, 2);
    AppendBig(body, comment.length.value_or(static_cast<std::uint32_t>(comment.text.size())), 4);
    Append(body, comment.text);
  }
  return DsdiffChunk("COMT", body, size);
}

Bytes NameChunk(std::string_view id, const std::string& text,
                std::optional<std::uint32_t> length = {}) {
  Bytes body;
  AppendBig(body, length.value_or(static_cast<std::uint32_t>(text.size())), 4);
  return DsdiffChunk(id, Append(body, text));
}

/// The edited master information with its true size.
Bytes MasterChunk(std::initializer_list<Bytes> chunks) {
  Bytes body;
  for (const Bytes& chunk : chunks) Append(body, chunk);
  return DsdiffChunk("DIIN", body);
}

Bytes DsdiffWith(const Bytes& chunks) {
  return DsdiffFile(2, 2822400, Bytes(8), {.after_sound = chunks});
}

TEST(DsdTag, DsfPointsToItsTag) {
  const Bytes payload(100, 0x69);
  const DsfOptions small{.block_bytes = 16};
  DsfOptions tagged = small;
  tagged.tag = Id3Block({Id3Frame("TIT2", "\3title"), Id3Frame("APIC", Raw("\3m\0\3\0xyz"))});
  TagRecord tag;
  EXPECT_EQ(Query(DsfFile(2, 2822400, payload, tagged), tag), 0);
  EXPECT_EQ(tag.format, 2u);
  EXPECT_EQ(TextOf(tag.title), "title");
  EXPECT_EQ(tag.pictureCount, 1);

  EXPECT_EQ(Query(DsfFile(2, 2822400, payload, small), tag), -1) << "no tag";
  ExpectEmpty(tag);
  const std::uint64_t size = DsfFile(2, 2822400, payload, tagged).size();
  for (const std::uint64_t pointer : {size - 1, size, size + 1, UINT64_MAX, UINT64_C(1) << 63}) {
    tagged.metadata_pointer = pointer;
    EXPECT_EQ(Query(DsfFile(2, 2822400, payload, tagged), tag), 0) << pointer;
    ExpectEmpty(tag);
  }
}

TEST(DsdTag, FilesWithoutTags) {
  TagRecord tag;
  EXPECT_EQ(Query(OneBitFile(2, 2822400, Bytes(8)), tag), -1);
  EXPECT_EQ(tag.format, 3u);
  ExpectEmpty(tag);
  EXPECT_EQ(Query(Bytes(100, 'x'), tag), 0);
  EXPECT_EQ(tag.format, 0u);
  ExpectEmpty(tag);
  ASSERT_NE(tag.PictureAlloc(1, 1, true), nullptr);
  EXPECT_EQ(DSDTag(TempFile().path(), &tag), -1);
  ExpectEmpty(tag);
}

TEST(DsdTag, DsdiffComments) {
  TagRecord tag;
  EXPECT_EQ(Query(DsdiffWith(CommentChunk({{2001, 0, 0, "first, longer"},
                                           {2002, 0, 0, "second"},
                                           {2003, 1, 0, "of a channel"},
                                           {2004, 0, 1, "of another"}})),
                  tag),
            0);
  EXPECT_EQ(tag.format, 1u);
  EXPECT_EQ(TextOf(tag.comment), "second") << "nothing of the first behind it";
  EXPECT_EQ(tag.year, 2004);

  // A pad byte behind an odd text is counted by the chunk alone.
  Bytes padded = CommentChunk({{2001, 0, 0, "odd"}}, 2 + 14 + 3 + 1);
  padded.push_back(0);
  EXPECT_EQ(Query(DsdiffWith(Append(padded, MasterChunk({NameChunk("DITI", "found")}))), tag), 0);
  EXPECT_EQ(TextOf(tag.title), "found");

  // A text that ends beyond the file is none; one that ends beyond its chunk is read.
  EXPECT_EQ(Query(DsdiffWith(CommentChunk({{2001, 0, 0, "text", UINT32_MAX}})), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "");
  EXPECT_EQ(tag.year, 2001);
  EXPECT_EQ(Query(DsdiffWith(CommentChunk({{2001, 0, 0, "text"}}, 1)), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "text");
}

TEST(DsdTag, DsdiffNames) {
  TagRecord tag;
  EXPECT_EQ(
      Query(DsdiffWith(MasterChunk({DsdiffChunk("EMID", Bytes(7)), NameChunk("DIAR", "Ärtist"),
                                    NameChunk("DITI", std::string(600, 't'))})),
            tag),
      0);
  EXPECT_EQ(TextOf(tag.artist), "Ärtist");
  EXPECT_EQ(std::string(tag.title, 514), std::string(514, 't'));
  EXPECT_EQ(TextOf(tag.album), "");

  EXPECT_EQ(Query(DsdiffWith(MasterChunk({NameChunk("DIAR", "A", 65537)})), tag), 0);
  EXPECT_EQ(TextOf(tag.artist), "A");

  // Names do not count as read, so the walk takes what follows for parts of the master information:
  // a name out there is found, a comment passed over.
  Bytes chunks = MasterChunk({NameChunk("DIAR", "artist")});
  Append(chunks, CommentChunk({{2001, 0, 0, "passed over"}}));
  Append(chunks, NameChunk("DITI", "out there"));
  EXPECT_EQ(Query(DsdiffWith(chunks), tag), 0);
  EXPECT_EQ(TextOf(tag.title), "out there");
  EXPECT_EQ(TextOf(tag.comment), "");
  // Without names it ends where it says.
  chunks = MasterChunk({DsdiffChunk("EMID", Bytes(8))});
  Append(chunks, CommentChunk({{2001, 0, 0, "read"}}));
  EXPECT_EQ(Query(DsdiffWith(chunks), tag), 0);
  EXPECT_EQ(TextOf(tag.comment), "read");
}

TEST(DsdTag, CutAtEveryByte) {
  Bytes chunks = CommentChunk({{2001, 0, 0, "comment"}});
  Append(chunks, MasterChunk({NameChunk("DIAR", "artist"), NameChunk("DITI", "title")}));
  const Bytes dsdiff = DsdiffFile(2, 2822400, Bytes(4), {.before_sound = chunks});
  const Bytes dsf = DsfFile(2, 2822400, Bytes(4),
                            {.block_bytes = 4, .tag = Id3Block({Id3Frame("TIT2", "\3title")})});
  for (const Bytes& whole : {dsdiff, dsf}) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
      TagRecord tag;
      Query(Bytes(whole.begin(), whole.begin() + length), tag);
      EXPECT_TRUE(TextOf(tag.title) == "" || TextOf(tag.title) == "title");
      EXPECT_TRUE(TextOf(tag.artist) == "" || TextOf(tag.artist) == "artist");
      EXPECT_TRUE(TextOf(tag.comment) == "" || TextOf(tag.comment) == "comment");
    }
  }
}

TEST(Genres, ListedInAlphabeticalOrderButForOne) {
  std::vector<std::pair<int, std::string>> listed;
  id3tag_genre_list(
      [](int genre, const char* name, void* user) {
        static_cast<decltype(listed)*>(user)->emplace_back(genre, name);
      },
      &listed);
  id3tag_genre_list(nullptr, nullptr);
  ASSERT_EQ(listed.size(), 148u);
  EXPECT_EQ(listed.front(), std::pair(123, std::string("A Cappella")));
  EXPECT_EQ(listed[5], std::pair(20, std::string("Alternative")));
  EXPECT_EQ(listed[6], std::pair(40, std::string("Alt. Rock")));
  EXPECT_EQ(listed.back(), std::pair(28, std::string("Vocal")));
  EXPECT_EQ(std::set(listed.begin(), listed.end()).size(), 148u);
  EXPECT_EQ(genre_names[147], std::string("Synthpop"));
}

}  // namespace
