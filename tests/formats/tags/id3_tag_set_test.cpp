// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags as such, from and to blocks of every version.

#include "formats/tags/id3_tag_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/id3_blocks.h"

namespace corvin::formats {
namespace {

using testing::Append;
using testing::Bytes;
using testing::Id3Block;
using testing::Id3Frame;
using testing::Raw;

TagSet ReadBlock(const Bytes& block, std::vector<std::string>* warnings = nullptr) {
  TagSet set;
  std::vector<std::string> told;
  EXPECT_TRUE(ReadId3TagSet(block, set, told));
  if (warnings != nullptr) *warnings = told;
  return set;
}

// "NAME=value|NAME=value[lang]", in the order of the set.
std::string Listed(const TagSet& set) {
  std::string list;
  for (const TagField& field : set.fields) {
    for (const TagValue& value : field.values) {
      list += (list.empty() ? "" : "|") + field.name + "=" + value.text;
      if (!value.language.empty()) list += "[" + value.language + "]";
    }
  }
  return list;
}

Bytes Frame22(std::string_view id, std::string_view body) {
  Bytes frame;
  Append(frame, id);
  testing::AppendBig(frame, body.size(), 3);
  return Append(frame, body);
}

// A frame whose flags and size are given as they stand.
Bytes FlaggedFrame(std::string_view id, std::uint32_t size, std::uint16_t flags,
                   std::string_view body) {
  Bytes frame;
  Append(frame, id);
  testing::AppendBig(frame, size, 4);
  testing::AppendBig(frame, flags, 2);
  return Append(frame, body);
}

Bytes Flagged(Bytes block, std::uint8_t flags) {
  block[5] = flags;
  return block;
}

struct Case {
  std::string name;
  Bytes block;
  std::string fields;
};

TEST(ReadId3TagSet, TextsOfEveryEncoding) {
  const std::string wide = Raw("\1\xff\xfe\xc4\0\x34\xd8\x1e\xdd");  // A umlaut, clef
  const std::vector<Case> cases = {
      {"ISO 8859-1", Id3Block({Id3Frame("TIT2", Raw("\0\xc4\xe9"))}), "TITLE=\xc3\x84\xc3\xa9"},
      {"little-endian", Id3Block({Id3Frame("TIT2", wide)}), "TITLE=\xc3\x84\xf0\x9d\x84\x9e"},
      {"big-endian", Id3Block({Id3Frame("TIT2", Raw("\1\xfe\xff\x20\xac\0\0"))}),
       "TITLE=\xe2\x82\xac"},
      {"no mark", Id3Block({Id3Frame("TIT2", Raw("\2\x20\xac"))}, {}, 4), "TITLE=\xe2\x82\xac"},
      {"one mark for two texts",
       Id3Block({Id3Frame("TXXX", Raw("\1\xff\xfe"
                                      "a\0\0\0"
                                      "b\0"))}),
       "a=b"},
      {"half a pair", Id3Block({Id3Frame("TIT2", Raw("\2\xd8\x3d\0x\xdd\x1e"))}),
       "TITLE=\xef\xbf\xbdx\xef\xbf\xbd"},
      {"UTF-8", Id3Block({Id3Frame("TIT2", "\3\xe2\x82\xac")}, {}, 4), "TITLE=\xe2\x82\xac"},
      {"no UTF-8 after all", Id3Block({Id3Frame("TIT2", "\3\xc0\x80 \xe9")}, {}, 4),
       "TITLE=\xc3\x80\xc2\x80 \xc3\xa9"},
      {"version 2.2",
       Id3Block({Frame22("TT2", Raw("\0\xe9")), Frame22("TXX", Raw("\0k\0v"))}, {}, 2),
       "TITLE=\xc3\xa9|k=v"},
  };
  for (const Case& one : cases) EXPECT_EQ(Listed(ReadBlock(one.block)), one.fields) << one.name;
}

TEST(ReadId3TagSet, MeaningOfFrames) {
  const std::vector<Case> cases = {
      {"several values, empty ones not", Id3Block({Id3Frame("TPE1", Raw("\3A/B\0\0C\0"))}, {}, 4),
       "ARTIST=A/B|ARTIST=C"},
      {"totals",
       Id3Block({Id3Frame("TRCK",
                          "\3"
                          "03/12"),
                 Id3Frame("TPOS",
                          "\3"
                          "2/")}),
       "TRACKTOTAL=12|TRACKNUMBER=03|DISCNUMBER=2"},
      {"genres by number",
       Id3Block({Id3Frame("TCON", Raw("\3(17)(RX)Own\0"
                                      "8\0((odd\0(999)\0"
                                      "1900"))}),
       "GENRE=Rock|GENRE=Remix|GENRE=Own|GENRE=Jazz|GENRE=(odd|GENRE=(999)|GENRE=1900"},
      {"a date of three frames",
       Id3Block({Id3Frame("TIME",
                          "\3"
                          "2215"),
                 Id3Frame("TDAT",
                          "\3"
                          "0507"),
                 Id3Frame("TYER",
                          "\3"
                          "1993"),
                 Id3Frame("TORY",
                          "\3"
                          "1960")}),
       "DATE=1993-07-05T22:15|ORIGINALDATE=1960"},
      {"no date",
       Id3Block({Id3Frame("TYER", "\3soon"), Id3Frame("TDAT",
                                                      "\3"
                                                      "0507")}),
       "DATE=soon"},
      {"the newer date wins",
       Id3Block({Id3Frame("TYER",
                          "\3"
                          "1993"),
                 Id3Frame("TDRC",
                          "\3"
                          "2001-02")}),
       "DATE=2001-02"},
      {"remarks",
       Id3Block({Id3Frame("COMM", Raw("\3eng\0plain")), Id3Frame("COMM", Raw("\3XXXnote\0x")),
                 Id3Frame("USLT", Raw("\3deu\0la\nla")), Id3Frame("COMM", Raw("\3\0\0\0\0z"))}),
       "COMMENT=plain[eng]|COMMENT=z|COMMENT:note=x|LYRICS=la\nla[deu]"},
      {"identifiers and addresses",
       Id3Block({Id3Frame("UFID", Raw("http://musicbrainz.org\0"
                                      "abc")),
                 Id3Frame("WXXX", Raw("\3shop\0http://\xe9")), Id3Frame("WOAR", "http://a"),
                 Id3Frame("TXXX", Raw("\3MusicBrainz Album Id\0id")),
                 Id3Frame("TXXX", Raw("\3replaygain_track_gain\0-1 dB"))}),
       "MUSICBRAINZ_TRACKID=abc|URL:shop=http://\xc3\xa9|WEBSITE=http://a|"
       "MUSICBRAINZ_ALBUMID=id|replaygain_track_gain=-1 dB"},
      {"people",
       Id3Block({Id3Frame("TIPL", Raw("\3producer\0P\0cook\0C\0")),
                 Id3Frame("TMCL", Raw("\3violin\0V\0performer\0W\0alone\0"))},
                {}, 4),
       "PRODUCER=P|PERFORMER=C (cook)|PERFORMER=V (violin)|PERFORMER=W"},
      {"a frame of its own before a text with a name",
       Id3Block({Id3Frame("TXXX", Raw("\3ALBUMARTIST\0One")), Id3Frame("TPE2", "\3Two"),
                 Id3Frame("TXXX", Raw("\3albumartist\0Two"))}),
       "ALBUMARTIST=Two|ALBUMARTIST=One"},
  };
  for (const Case& one : cases) {
    const TagSet set = ReadBlock(one.block);
    EXPECT_EQ(Listed(set), one.fields) << one.name;
    EXPECT_TRUE(set.frames.empty()) << one.name;
  }
}

TEST(ReadId3TagSet, WrappingsOfBlocksAndFrames) {
  const std::string text = Raw("\3a\xffz");
  const std::string spread = Raw("\3a\xff\0z");  // two values unless it is resynchronised
  const Bytes title = Id3Frame("TIT2", "\3t");
  const std::string long_text = "\3" + std::string(300, 'x');
  const std::vector<Case> cases = {
      {"2.3, unsynchronised", Flagged(Id3Block({Id3Frame("TALB", spread, 4), title}), 0x80),
       "ALBUM=a\xc3\xbfz|TITLE=t"},
      {"2.4, a frame is",
       Id3Block({FlaggedFrame("TALB", 5, 0x0002, spread), Id3Frame("TIT2", text)}, {}, 4),
       "ALBUM=a\xc3\xbfz|TITLE=a\xc3\xbfz"},
      {"2.4, all frames are", Flagged(Id3Block({Id3Frame("TALB", spread)}, {}, 4), 0x80),
       "ALBUM=a\xc3\xbfz"},
      {"2.4, group and length",
       Id3Block({FlaggedFrame("TALB", 7, 0x0041, Raw("\x80\0\0\0\2\3a")), title}, {}, 4),
       "ALBUM=a|TITLE=t"},
      {"2.3, group", Id3Block({FlaggedFrame("TALB", 3, 0x0020, "\x80\3a"), title}),
       "ALBUM=a|TITLE=t"},
      {"2.3, extended header",
       Flagged(Id3Block({Bytes{0, 0, 0, 6, 0, 0, 0, 0, 0, 0}, title}), 0x40), "TITLE=t"},
      {"2.4, extended header and footer",
       Flagged(Id3Block({Bytes{0, 0, 0, 6, 1, 0}, title}, {}, 4), 0x50), "TITLE=t"},
      {"the flag of an extended header alone", Flagged(Id3Block({title}), 0x40), "TITLE=t"},
      {"2.4 with plain sizes", Id3Block({Id3Frame("TALB", long_text), title}, {}, 4),
       "ALBUM=" + long_text.substr(1) + "|TITLE=t"},
      {"padding", Id3Block({title, Bytes(40)}), "TITLE=t"},
  };
  for (const Case& one : cases) EXPECT_EQ(Listed(ReadBlock(one.block)), one.fields) << one.name;
}

TEST(ReadId3TagSet, Pictures) {
  const TagSet set = ReadBlock(Id3Block({Id3Frame("APIC", Raw("\3image/png\0\3front\0\x89PNG\0")),
                                         Id3Frame("APIC", Raw("\1-->\0\4\xff\xfe\0\0http://x"))}));
  const TagSet old = ReadBlock(Id3Block({Frame22("PIC", Raw("\0JPG\5d\0\xff\xd8"))}, {}, 2));
  ASSERT_EQ(set.pictures.size(), 2u);
  EXPECT_EQ(set.pictures[0], (TagPicture{3, "image/png", "front", {0x89, 'P', 'N', 'G', 0}}));
  EXPECT_EQ(set.pictures[1].mime, "-->");
  EXPECT_EQ(set.pictures[1].data.size(), 8u);
  ASSERT_EQ(old.pictures.size(), 1u);
  EXPECT_EQ(old.pictures[0], (TagPicture{5, "image/jpeg", "d", {0xff, 0xd8}}));
}

TagSet RichSet() {
  TagSet set;
  const std::vector<std::pair<std::string, std::string>> values = {
      {"TITLE", "Z\xc3\xb6 \xf0\x9d\x84\x9e"},
      {"ARTIST", "One"},
      {"ARTIST", "Two/Three"},
      {"DATE", "1993-07-05T22:15"},
      {"ORIGINALDATE", "1960"},
      {"RELEASEDATE", "2001-02"},
      {"TRACKNUMBER", "03"},
      {"TRACKTOTAL", "12"},
      {"DISCTOTAL", "2"},  // without a number
      {"GENRE", "Rock"},
      {"GENRE", "(17) odd"},
      {"MOOD", "calm"},
      {"COMMENT:note", "x"},
      {"URL", "http://a"},
      {"URL:two", "http://b"},
      {"URL:two", "http://c"},
      {"LICENSE", "\xe2\x82\xac"},
      {"MUSICBRAINZ_TRACKID", "abc"},
      {"MUSICBRAINZ_ALBUMID", "def"},
      {"REPLAYGAIN_TRACK_GAIN", "-6.50 dB"},
      {"PRODUCER", "P"},
      {"PERFORMER", "V (violin)"},
      {"PERFORMER", "W"},
      {"My own", "yes"},
  };
  for (const auto& [name, text] : values) set.Add(name, {text, {}});
  set.Add("COMMENT", {"said", "eng"});
  set.Add("COMMENT", {"also", "eng"});
  set.Add("COMMENT", {"gesagt", "deu"});
  set.pictures = {{3, "image/jpeg", "v\xc3\xb6rn", {0xff, 0, 0xff, 0xe0}},
                  {4, "image/png", "", {1}}};
  Id3FrameHeader plain;
  plain.id = "PRIV";
  Id3FrameHeader packed;
  packed.id = "TALB";
  packed.is_compressed = true;
  packed.data_bytes = 300;
  packed.group = 0x81;
  packed.encryption = 0x90;
  packed.read_only = true;
  set.frames = {{plain, {'o', 0, 0xff, 0}}, {packed, {1, 2, 3}}};
  return set;
}

std::string SortedList(const TagSet& set) {
  std::vector<std::string> lines;
  for (const TagField& field : set.fields) lines.push_back(Listed({{field}, {}, {}}));
  std::sort(lines.begin(), lines.end());
  std::string list;
  for (const std::string& line : lines) list += line + "\n";
  return list;
}

TEST(MakeId3Block, GivesBackEverythingIn24) {
  const TagSet set = RichSet();
  std::vector<std::uint8_t> block;
  ASSERT_TRUE(MakeId3Block(set, Id3Version::k24, block));
  std::vector<std::string> warnings;
  const TagSet back = ReadBlock(block, &warnings);
  EXPECT_EQ(SortedList(back), SortedList(set));
  EXPECT_EQ(back.pictures, set.pictures);
  EXPECT_EQ(back.frames, set.frames);
  EXPECT_EQ(warnings.size(), 1u);  // of the packed frame
  EXPECT_EQ(Id3Losses(set, Id3Version::k24), std::vector<std::string>{});
}

TEST(MakeId3Block, TellsWhat23DoesNotGiveBack) {
  TagSet set = RichSet();
  set.Add("ENCODINGTIME", {"2020", {}});
  set.Remove("ORIGINALDATE");
  set.Add("ORIGINALDATE", {"1960-05", {}});
  std::vector<std::uint8_t> block;
  ASSERT_TRUE(MakeId3Block(set, Id3Version::k23, block));
  EXPECT_EQ(block[3], 3);
  const TagSet back = ReadBlock(block);
  EXPECT_EQ(back.frames, set.frames);
  EXPECT_EQ(back.pictures, set.pictures);
  const std::vector<std::string> losses = {
      "ARTIST: \"One\", \"Two/Three\" becomes \"One/Two/Three\"",
      "GENRE: \"Rock\", \"(17) odd\" becomes \"Rock/((17) odd\"",
      "URL:two: \"http://b\", \"http://c\" becomes \"http://b/http://c\"",
      "COMMENT: \"said\" (eng), \"also\" (eng), \"gesagt\" (deu) becomes \"said/also\" (eng), "
      "\"gesagt\" (deu)",
      "ORIGINALDATE: \"1960-05\" becomes \"1960\"",
  };
  EXPECT_EQ(Id3Losses(set, Id3Version::k23), losses);
}

TEST(MakeId3Block, IsBounded) {
  TagSet set;
  std::vector<std::uint8_t> block;
  EXPECT_TRUE(MakeId3Block(set, Id3Version::k24, block));
  EXPECT_TRUE(block.empty());
  set.pictures = {{3, "", "", std::vector<std::uint8_t>(1u << 28)}};
  EXPECT_FALSE(MakeId3Block(set, Id3Version::k24, block));
}

// Whatever the bytes are, reading ends, and what was read can be written.
TEST(Hostile, BlocksCutAndChangedAnywhere) {
  std::vector<Bytes> blocks(2);
  MakeId3Block(RichSet(), Id3Version::k24, blocks[0]);
  MakeId3Block(RichSet(), Id3Version::k23, blocks[1]);
  blocks.push_back(Id3Block({Frame22("TT2", Raw("\1\xff\xfe"
                                                "a\0")),
                             Frame22("PIC", "\3JPG\3d")},
                            {}, 2));
  const auto survive = [](const Bytes& block) {
    TagSet set;
    std::vector<std::string> warnings;
    std::vector<std::uint8_t> again;
    ReadId3TagSet(block, set, warnings);
    ASSERT_TRUE(MakeId3Block(set, Id3Version::k24, again));
  };
  for (const Bytes& block : blocks) {
    for (std::size_t at = 0; at < block.size(); ++at) {
      survive(Bytes(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(at)));
      for (const int value : {0x00, 0x01, 0x7f, 0xff}) {
        Bytes lying = block;
        lying[at] = static_cast<std::uint8_t>(value);
        survive(lying);
      }
    }
  }
}

TEST(Hostile, FloodsOfFramesAndValues) {
  std::string values;
  for (int i = 0; i < 5000; ++i) values += std::to_string(i) + '\0';
  std::vector<std::string> warnings;
  TagSet set = ReadBlock(Id3Block({Id3Frame("TPE1", "\3" + values)}), &warnings);
  EXPECT_EQ(set.fields[0].values.size(), 4096u);
  EXPECT_EQ(warnings.size(), 1u);
  Bytes frames;
  for (int i = 0; i < 20000; ++i) Append(frames, Id3Frame("PRIV", "x"));
  set = ReadBlock(Id3Block({frames}), &warnings);
  EXPECT_EQ(set.frames.size(), 16384u);
  EXPECT_EQ(warnings.size(), 1u);
}

}  // namespace
}  // namespace corvin::formats
