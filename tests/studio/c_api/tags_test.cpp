// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags through the C functions: what they are told to hold, and their way into files and out again.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/support/dsd_files.h"
#include "tests/support/id3_blocks.h"
#include "tests/support/sound_files.h"
#include "tests/support/status_of.h"
#include "tests/support/temp_file.h"

namespace corvin::studio {
namespace {

using testing::Append;
using testing::DsdiffChunk;
using testing::DsdiffFile;
using testing::DsdiffOptions;
using testing::DsfFile;
using testing::DsfOptions;
using testing::Id3Block;
using testing::Id3Frame;
using testing::Id3Text;
using testing::Raw;
using testing::ReadFile;
using testing::TempFile;

const Bytes kSound(300, kIdle);

// With what a newly made block would not have: padding and an odd size.
Bytes odd_block() {
  return Id3Block({Id3Text("TIT2", "Title"), Id3Frame("TPE1", Raw("\0\xe9t\xe9")),
                   Id3Frame("PRIV", "owner"), Bytes(8)});
}

TagSet tags_of(const Bytes& file) { return MemoryFile(file).all_tags(); }

Bytes bytes_of(const std::vector<std::byte>& bytes) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  return {data, data + bytes.size()};
}

Bytes file_with(corvin_container container, const TagSet& tags) {
  MemoryStream stream;
  Writer writer(stream.callbacks(), writer_settings(container, 1));
  writer.write(kSound.data(), kSound.size());
  writer.set_all_tags(tags);
  writer.finish(kSound.size() * 8);
  return stream.bytes;
}

bool holds(const Bytes& file, const Bytes& part) {
  return std::search(file.begin(), file.end(), part.begin(), part.end()) != file.end();
}

TEST(TagsHandle, HoldsWhatItIsTold) {
  TagSet tags;
  tags.add("Title", "One");
  tags.add("TITLE", "Two");
  tags.add("title", "One");  // there already
  tags.add("COMMENT", "said", "eng");
  tags.set("comment", "other");
  EXPECT_EQ(tags.names(), (std::vector<std::string>{"Title", "COMMENT"}));
  EXPECT_EQ(tags.values("tiTLE"), (std::vector<std::string>{"One", "Two"}));
  EXPECT_EQ(tags.values("COMMENT"), std::vector<std::string>{"other"});
  EXPECT_EQ(tags.language("COMMENT"), "eng");
  tags.remove("TITLE");
  EXPECT_EQ(tags.value("TITLE"), "");
  const std::byte data[] = {std::byte{1}, std::byte{0}};
  tags.add_picture({4, "image/png", "back", data});
  EXPECT_EQ(tags.pictures()[0].description, "back");
  tags.remove_picture(0);
  tags.remove("comment");
  EXPECT_TRUE(tags.empty());
}

TEST(TagsHandle, RefusesWhatNoTagCanHold) {
  TagSet tags;
  corvin_tags* const handle = tags.handle();
  for (const char* text : {static_cast<const char*>(nullptr), "", "\xff", "\xed\xa0\x80"}) {
    EXPECT_EQ(corvin_tags_set(handle, text, "x"), CORVIN_E_ARGUMENT);
    EXPECT_EQ(corvin_tags_add(handle, "x", text, nullptr), CORVIN_E_ARGUMENT);
  }
  EXPECT_EQ(corvin_tags_add(handle, "TITLE", "x", "eng"), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_tags_add(handle, "LYRICS", "x", "en"), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_tags_read_id3(handle, "ID3", 3), CORVIN_E_FORMAT);
  corvin_picture picture = {};
  picture.size = sizeof picture;
  picture.type = 21;
  EXPECT_EQ(corvin_tags_add_picture(handle, &picture), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_tags_get_picture(handle, 0, &picture), CORVIN_E_ARGUMENT);
  std::size_t bytes = 0;
  EXPECT_EQ(corvin_tags_write_id3(handle, 2, nullptr, 0, &bytes), CORVIN_E_ARGUMENT);
  EXPECT_TRUE(tags.empty());
}

TEST(TagsHandle, KeepsABlockAsItIsUntilAnEdit) {
  const Bytes block = odd_block();
  TagSet tags;
  tags.read_id3(std::as_bytes(std::span(block)));
  EXPECT_EQ(bytes_of(tags.write_id3()), block);
  EXPECT_EQ(tags.losses(CORVIN_ID3_AS_READ), "");
  ASSERT_EQ(tags.frames().size(), 1u);
  EXPECT_EQ(tags.frames()[0].id, "PRIV");
  tags.add("ARTIST", "B");
  EXPECT_EQ(tags.losses(CORVIN_ID3_AS_READ), "");
  EXPECT_EQ(tags.losses(CORVIN_ID3_V23),
            "ARTIST: \"\xc3\xa9t\xc3\xa9\", \"B\" becomes \"\xc3\xa9t\xc3\xa9/B\"");
  EXPECT_EQ(bytes_of(tags.write_id3()), bytes_of(tags.write_id3(CORVIN_ID3_V24)));
  EXPECT_EQ(bytes_of(tags.write_id3())[3], 4);
}

TEST(TagsOfFiles, BlocksGoFromContainerToContainer) {
  const Bytes block = odd_block();
  TagSet tags;
  tags.read_id3(std::as_bytes(std::span(block)));
  for (const corvin_container container : {CORVIN_DSDIFF, CORVIN_DSF}) {
    const Bytes file = file_with(container, tags);
    MemoryFile opened(file);
    EXPECT_EQ(opened.warnings(), std::vector<std::string>{});
    EXPECT_EQ(read_all(opened), kSound);
    EXPECT_TRUE(holds(file, block));
    EXPECT_EQ(bytes_of(opened.all_tags().write_id3()), block);
    EXPECT_EQ(file_with(container, opened.all_tags()), file);
  }
  // Readers that know no blocks find the names.
  EXPECT_TRUE(holds(file_with(CORVIN_DSDIFF, tags),
                    DsdiffChunk("DIAR", {0, 0, 0, 5, 0xc3, 0xa9, 't', 0xc3, 0xa9})));
  EXPECT_EQ(status_of([&] { file_with(CORVIN_ONE_BIT, tags); }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status_of([&] { file_with(CORVIN_ONE_BIT, {}); }), CORVIN_OK);
}

Bytes general_comment(const std::string& text) {
  Bytes comment = {0x07, 0xcf, 1, 1, 0, 0, 0,
                   0,    0,    0, 0, 0, 0, static_cast<std::uint8_t>(text.size())};
  Append(comment, text);
  if (text.size() % 2 != 0) comment.push_back(0);
  return comment;
}

// A file with tags in every place that the container has.
Bytes scattered_dsdiff(const Bytes& block) {
  DsdiffOptions options;
  options.properties_last = DsdiffChunk("ID3 ", Id3Block({Id3Text("TALB", "Album")}));
  if (options.properties_last.size() % 2 != 0) options.properties_last.push_back(0);
  Bytes comments = {0, 2};
  Append(comments, general_comment("odd"));
  Bytes machine = general_comment("machine");
  machine[7] = 2;  // another type
  Append(comments, machine);
  Bytes names = DsdiffChunk("EMID", {'x', 'y'});
  Append(names, DsdiffChunk("DITI", {0, 0, 0, 2, 'N', 0xe9}));
  options.after_sound = DsdiffChunk("COMT", comments);
  Append(options.after_sound, DsdiffChunk("DIIN", names));
  Append(options.after_sound, DsdiffChunk("MANF", {'m', 'a'}));
  if (!block.empty()) {
    Append(options.after_sound, DsdiffChunk("ID3 ", block));
    if (block.size() % 2 != 0) options.after_sound.push_back(0);
  }
  return DsdiffFile(1, 2822400, kSound, options);
}

TEST(TagsOfFiles, EveryPlaceInDsdiffCounts) {
  const TagSet tags = tags_of(scattered_dsdiff(Id3Block({Id3Text("TPE1", "Artist")})));
  EXPECT_EQ(tags.value("ALBUM") + "/" + tags.value("ARTIST") + "/" + tags.value("TITLE") + "/" +
                tags.value("COMMENT"),
            "Album/Artist/N\xc3\xa9/odd");
}

TEST(TagsOfFiles, SavingLeavesAllElse) {
  for (const bool is_tagged : {false, true}) {
    const Bytes block = is_tagged ? odd_block() : Bytes{};
    DsfOptions options;
    options.tag = block;
    for (const Bytes& before : {DsfFile(1, 2822400, kSound, options), scattered_dsdiff(block)}) {
      const TempFile file(before);
      TagSet tags = tags_of(before);
      tags.remove("COMMENT");
      tags.set("TITLE", std::string(3001, 'x'));
      tags.save(file.path());
      const Bytes after = ReadFile(file.path());
      MemoryFile opened(after);
      EXPECT_EQ(opened.warnings(), std::vector<std::string>{});
      EXPECT_EQ(read_all(opened), kSound);
      EXPECT_EQ(opened.all_tags().value("TITLE").size(), 3001u);
      EXPECT_EQ(opened.all_tags().names(), tags.names());
      EXPECT_EQ(opened.all_tags().frames().size(), is_tagged ? 1u : 0u);
      for (const char* kept : {"machine", "EMID", "MANF"}) {
        const Bytes text(kept, kept + std::strlen(kept));
        EXPECT_EQ(holds(after, text), holds(before, text)) << kept;
      }
      // Without tags nothing of them is left.
      TagSet().save(file.path());
      MemoryFile bare(ReadFile(file.path()));
      EXPECT_TRUE(bare.all_tags().empty());
      EXPECT_EQ(bare.warnings(), std::vector<std::string>{});
      EXPECT_EQ(read_all(bare), kSound);
    }
  }
}

TEST(TagsOfFiles, SavingKeepsModeAndLink) {
  const TempFile file(DsfFile(1, 2822400, kSound));
  const TempFile link;
  std::filesystem::create_symlink(file.path(), link.path());
  chmod(file.path(), 0604);
  TagSet tags;
  tags.set("TITLE", "x");
  tags.save(link.path());
  struct stat status;
  ASSERT_EQ(stat(file.path(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0604u);
  EXPECT_TRUE(std::filesystem::is_symlink(link.path()));
  EXPECT_EQ(tags_of(ReadFile(file.path())).value("TITLE"), "x");
}

TEST(TagsOfFiles, SavingRefusesWhatItMightSpoil) {
  TagSet tags;
  tags.set("TITLE", "x");
  DsdiffOptions lying;
  lying.properties_size = 74;  // that of stereo
  DsdiffOptions cut;
  cut.sound_size = 100000;
  const std::pair<Bytes, int> files[] = {
      {DsdiffFile(1, 2822400, kSound, lying), CORVIN_E_FORMAT},
      {DsdiffFile(1, 2822400, kSound, cut), CORVIN_E_FORMAT},
      {testing::OneBitFile(1, 2822400, kSound), CORVIN_E_UNSUPPORTED},
      {Bytes(100), CORVIN_E_FORMAT},
  };
  for (const auto& [bytes, status] : files) {
    const TempFile file(bytes);
    EXPECT_EQ(status_of([&] { tags.save(file.path()); }), status);
    EXPECT_EQ(ReadFile(file.path()), bytes);
  }
  EXPECT_EQ(status_of([&] { tags.save("/no/such/file"); }), CORVIN_E_READ);
}

TEST(TagsOfFiles, FailingReadsAreTold) {
  DsfOptions options;
  options.tag = odd_block();
  const Bytes whole = DsfFile(1, 2822400, kSound, options);
  int status = CORVIN_E_READ;
  for (int good = 0; status != CORVIN_OK; ++good) {
    MemoryStream stream(whole);
    stream.calls_left = good;
    status = status_of([&] {
      File file(stream.callbacks());
      EXPECT_EQ(file.all_tags().value("TITLE"), "Title");
    });
    ASSERT_TRUE(status == CORVIN_E_READ || status == CORVIN_OK) << good;
    ASSERT_LT(good, 100);
  }
}

}  // namespace
}  // namespace corvin::studio
