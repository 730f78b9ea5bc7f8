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
  std::uint32_t length_added = 0;
};

Bytes CommentChunk(const std::vector<Comment>& comments, std::optional<std::uint64_t> size = {}) {
  Bytes body;
  AppendBig(body, comments.size(), 2);
  for (const Comment& comment : comments) {
    AppendBig(AppendBig(body, comment.year, 2), 0x01020304, 4);
    AppendBig(AppendBig(body, comment.type, 2), comment.reference, 2);
    AppendBig(body, comment.text.size() + comment.length_added, 4);
    Append(body, comment.text);
  }
  return DsdiffChunk("COMT", body, size);
}

Bytes NameChunk(std::string_view id, const std::string& text, std::uint32_t length_added = 0) {
  Bytes body;
  AppendBig(body, text.size() + length_added, 4);
  return DsdiffChunk(id, Append(body, text));
}

Bytes Joined(std::initializer_list<Bytes> chunks) {
  Bytes all;
  for (const Bytes& chunk : chunks) Append(all, chunk);
  return all;
}

/// The edited master information with its true size.
Bytes MasterChunk(std::initializer_list<Bytes> chunks) {
  return DsdiffChunk("DIIN", Joined(chunks));
}

TEST(DsdTag, DsfPointsToItsTag) {
  DsfOptions options{.block_bytes = 16};
  const auto file = [&] { return DsfFile(2, 2822400, Bytes(100, 0x69), options); };
  TagRecord tag;
  EXPECT_EQ(Query(file(), tag), -1) << "no tag";
  ExpectEmpty(tag);
  options.tag = Id3Block({Id3Text("TIT2", "title"), Id3Frame("APIC", Raw("\3m\0\3\0xyz"))});
  EXPECT_EQ(Query(file(), tag), 0);
  EXPECT_EQ(tag.format, 2u);
  EXPECT_EQ(TextOf(tag.title), "title");
  EXPECT_EQ(tag.pictureCount, 1);
  const std::uint64_t size = file().size();
  for (const std::uint64_t pointer : {size - 1, size, size + 1, UINT64_MAX, UINT64_C(1) << 63}) {
    options.metadata_pointer = pointer;
    EXPECT_EQ(Query(file(), tag), 0) << pointer;
    ExpectEmpty(tag);
  }
}

TEST(DsdTag, FilesWithoutTagsEmptyTheRecord) {
  TagRecord tag;
  EXPECT_EQ(Query(OneBitFile(2, 2822400, Bytes(8)), tag), -1);
  EXPECT_EQ(tag.format, 3u);
  ExpectEmpty(tag);
  EXPECT_EQ(Query(Bytes(100, 'x'), tag), 0);
  EXPECT_EQ(tag.format, 0u);
  EXPECT_EQ(DSDTag(TempFile().path(), &tag), -1);
  ExpectEmpty(tag);
}

TEST(DsdTag, DsdiffCommentsAndNames) {
  const Bytes padded = Joined({CommentChunk({{2001, 0, 0, "odd"}}, 2 + 14 + 3 + 1), Bytes(1)});
  const Bytes artist = NameChunk("DIAR", "Ärtist");
  const Bytes title = NameChunk("DITI", "title");
  const Bytes comment = CommentChunk({{2001, 0, 0, "text"}});
  struct Row {
    const char* what;
    Bytes chunks;
    int year;
    std::string comment, artist, title;
  };
  const Row rows[] = {
      {"the last general comment, the last year",
       CommentChunk({{2001, 0, 0, "first, longer"},
                     {2002, 0, 0, "second"},
                     {2003, 1, 0, "of a channel"},
                     {2004, 0, 1, "of another"}}),
       2004, "second", "", ""},
      {"pad byte counted by the chunk alone", Joined({padded, MasterChunk({title})}), 2001, "odd",
       "", "title"},
      {"text beyond the file", CommentChunk({{2001, 0, 0, "text", 1000}}), 2001, "", "", ""},
      {"text beyond its chunk", CommentChunk({{2001, 0, 0, "text"}}, 1), 2001, "text", "", ""},
      {"names", MasterChunk({DsdiffChunk("EMID", Bytes(7)), artist, title}), 0, "", "Ärtist",
       "title"},
      {"name longer than its field", MasterChunk({NameChunk("DITI", std::string(600, 't'))}), 0, "",
       "", std::string(514, 't')},
      {"low half of a length", MasterChunk({NameChunk("DIAR", "A", 65536)}), 0, "", "A", ""},
      // Names do not count as read, so the walk takes what follows for parts of the master
      // information: a name out there is found, a comment passed over.
      {"name out there", Joined({MasterChunk({artist}), comment, title}), 0, "", "Ärtist", "title"},
      {"without names it ends where it says",
       Joined({MasterChunk({DsdiffChunk("EMID", Bytes(8))}), comment}), 2001, "text", "", ""},
  };
  for (const Row& row : rows) {
    TagRecord tag;
    EXPECT_EQ(Query(DsdiffFile(2, 2822400, Bytes(8), {.after_sound = row.chunks}), tag), 0);
    EXPECT_EQ(tag.format, 1u);
    EXPECT_EQ(tag.year, row.year) << row.what;
    EXPECT_EQ(TextOf(tag.comment), row.comment) << row.what;
    EXPECT_EQ(TextOf(tag.artist), row.artist) << row.what;
    EXPECT_EQ(TextOf(tag.title), row.title) << row.what;
  }
}

TEST(DsdTag, NullPointersFail) {
  DSDTagClear(nullptr);
  EXPECT_EQ(DSDTag(TempFile(DsdiffFile(2, 2822400, Bytes(4))).path(), nullptr), -1);
  TagRecord tag;
  tag.year = 1999;
  EXPECT_EQ(DSDTag(nullptr, &tag), -1);
  EXPECT_EQ(tag.year, 0) << "emptied first";
}

TEST(DsdTag, CutAtEveryByte) {
  const Bytes chunks =
      Joined({CommentChunk({{2001, 0, 0, "comment"}}),
              MasterChunk({NameChunk("DIAR", "artist"), NameChunk("DITI", "title")})});
  const Bytes dsdiff = DsdiffFile(2, 2822400, Bytes(4), {.before_sound = chunks});
  const Bytes dsf = DsfFile(2, 2822400, Bytes(4),
                            {.block_bytes = 4, .tag = Id3Block({Id3Text("TIT2", "title")})});
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
  ASSERT_EQ(std::set(listed.begin(), listed.end()).size(), 148u);
  EXPECT_EQ(listed.front(), std::pair(123, std::string("A Cappella")));
  EXPECT_EQ(listed[5], std::pair(20, std::string("Alternative")));
  EXPECT_EQ(listed[6], std::pair(40, std::string("Alt. Rock")));
  EXPECT_EQ(listed.back(), std::pair(28, std::string("Vocal")));
  EXPECT_EQ(genre_names[147], std::string("Synthpop"));
}

}  // namespace
