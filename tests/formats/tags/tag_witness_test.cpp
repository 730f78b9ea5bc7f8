// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Blocks that another tag library writes, read by ours, and the other way round.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "formats/tags/id3_tag_set.h"
#include "tests/support/temp_file.h"

#ifdef CORVIN_MUTAGEN_PYTHON

namespace corvin::formats {
namespace {

using testing::ReadFile;
using testing::TempFile;

std::string PythonSays(const std::string& program) {
  const TempFile script(std::vector<std::uint8_t>(program.begin(), program.end()));
  std::FILE* const pipe =
      popen((std::string(CORVIN_MUTAGEN_PYTHON " ") + script.path() + " 2>&1").c_str(), "r");
  std::string text;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
  pclose(pipe);
  return text;
}

std::string Listed(const TagSet& set) {
  std::vector<std::string> lines;
  for (const TagField& field : set.fields) {
    for (const TagValue& value : field.values) {
      lines.push_back(field.name + "=" + value.text + value.language);
    }
  }
  for (const TagPicture& picture : set.pictures) {
    lines.push_back(std::to_string(picture.type) + " " + picture.mime + " " + picture.description +
                    " " + std::to_string(picture.data.size()));
  }
  for (const KeptFrame& frame : set.frames) lines.push_back(frame.header.id);
  std::sort(lines.begin(), lines.end());
  std::string list;
  for (const std::string& line : lines) list += line + "\n";
  return list;
}

TEST(TagWitness, BlocksOfOthersAreUnderstood) {
  const TempFile file;
  for (const auto& [version, encoding] :
       {std::pair{3, 0}, {3, 1}, {4, 0}, {4, 1}, {4, 2}, {4, 3}}) {
    const std::string values = "version = " + std::to_string(version) +
                               "; e = " + std::to_string(encoding) + "; path = '" + file.path() +
                               "'\n";
    const std::string said = PythonSays(values + R"(
from mutagen.id3 import (ID3, APIC, COMM, PRIV, TCON, TDOR, TDRC, TIPL, TIT2, TMCL, TPE1, TPE2, TRCK, TXXX,
                         UFID, USLT, WOAR, WXXX)
tags = ID3()
for frame in (
    TIT2(encoding=e, text="Zwölf"), TPE1(encoding=e, text=["Une", "Deux"]),
    TPE2(encoding=e, text="É"), TRCK(encoding=e, text="3/12"), TDRC(encoding=e, text="1993-07-05"),
    TDOR(encoding=e, text="1960"), TCON(encoding=e, text=["Rock", "(odd"]),
    COMM(encoding=e, lang="deu", desc="", text="gesagt"), USLT(encoding=e, lang="eng", desc="d", text="la\nla"),
    TXXX(encoding=e, desc="replaygain_track_gain", text="-6.5 dB"),
    TXXX(encoding=e, desc="MusicBrainz Album Id", text="id"),
    UFID(owner="http://musicbrainz.org", data=b"rec"), UFID(owner="other", data=b"x"),
    WXXX(encoding=e, desc="shop", url="http://x/é"), WOAR(url="http://y"), PRIV(owner="o", data=b"\xff\x00"),
    TIPL(encoding=e, people=[["producer", "P"]]), TMCL(encoding=e, people=[["violin", "V"]]),
    APIC(encoding=e, mime="image/png", type=4, desc="hinten ü", data=b"\xff\xe0\xff\x00" * 50)):
    tags.add(frame)
if version == 3: tags.update_to_v23()
open(path, "wb").close()
tags.save(path, v1=0, v2_version=version)
)");
    EXPECT_EQ(said, "");
    TagSet set;
    std::vector<std::string> warnings;
    ASSERT_TRUE(ReadId3TagSet(ReadFile(file.path()), set, warnings));
    EXPECT_EQ(warnings, std::vector<std::string>{});
    const std::string artist = version == 3 ? "ARTIST=Une/Deux\n" : "ARTIST=Deux\nARTIST=Une\n";
    const std::string genre = version == 3 ? "GENRE=Rock/(odd\n" : "GENRE=(odd\nGENRE=Rock\n";
    EXPECT_EQ(Listed(set), "4 image/png hinten \xc3\xbc 200\nALBUMARTIST=\xc3\x89\n" + artist +
                               "COMMENT=gesagtdeu\nDATE=1993-07-05\n" + genre +
                               "LYRICS:d=la\nlaeng\nMUSICBRAINZ_ALBUMID=id\n"
                               "MUSICBRAINZ_TRACKID=rec\nORIGINALDATE=1960\n"
                               "PERFORMER=V (violin)\nPRIV\nPRODUCER=P\nTITLE=Zw\xc3\xb6lf\n"
                               "TRACKNUMBER=3\nTRACKTOTAL=12\nUFID\nURL:shop=http://x/\xc3\xa9\n"
                               "WEBSITE=http://y\nreplaygain_track_gain=-6.5 dB\n")
        << version << " " << encoding;
  }
}

TEST(TagWitness, OthersUnderstandOurBlocks) {
  TagSet set;
  const std::pair<const char*, TagValue> values[] = {
      {"TITLE", {"Zw\xc3\xb6lf \xf0\x9d\x84\x9e", {}}},
      {"ARTIST", {"One", {}}},
      {"ARTIST", {"Two", {}}},
      {"DATE", {"1993-07-05T22:15", {}}},
      {"TRACKNUMBER", {"3", {}}},
      {"TRACKTOTAL", {"12", {}}},
      {"GENRE", {"Jazz", {}}},
      {"COMMENT", {"said", "eng"}},
      {"LYRICS", {"la", {}}},
      {"URL:shop", {"http://x", {}}},
      {"MUSICBRAINZ_TRACKID", {"rec", {}}},
      {"MUSICBRAINZ_ALBUMID", {"id", {}}},
      {"PERFORMER", {"V (violin)", {}}},
  };
  for (const auto& [name, value] : values) set.Add(name, value);
  set.pictures = {{3, "image/png", "v\xc3\xb6rn", {1, 2, 0xff}}};
  for (const Id3Version version : {Id3Version::k23, Id3Version::k24}) {
    std::vector<std::uint8_t> block;
    ASSERT_TRUE(MakeId3Block(set, version, block));
    const TempFile file(block);
    const std::string said = PythonSays("path = '" + std::string(file.path()) + R"('
from mutagen.id3 import ID3
tags = ID3(path, translate=False)
print(tags.version[1], tags.unknown_frames)
for key in sorted(tags):
    frame = tags[key]
    said = getattr(frame, "data", None) or getattr(frame, "url", None) or getattr(frame, "people", None)
    print(ascii(key), ascii(said or [str(text) for text in frame.text] if key[:4] != "USLT" else frame.text))
)");
    const std::string common = "'APIC:v\\xf6rn' b'\\x01\\x02\\xff'\n'COMM::eng' ['said']\n";
    const std::string rest = "'TXXX:MusicBrainz Album Id' ['id']\n";
    const std::string end =
        "'UFID:http://musicbrainz.org' b'rec'\n'USLT::XXX' 'la'\n'WXXX:shop' 'http://x'\n";
    const std::string title = "'TIT2' ['Zw\\xf6lf \\U0001d11e']\n";
    if (version == Id3Version::k23) {
      EXPECT_EQ(said, "3 []\n" + common + "'IPLS' [['violin', 'V']]\n'TCON' ['Jazz']\n" +
                          "'TDAT' ['0507']\n'TIME' ['2215']\n" + title +
                          "'TPE1' ['One/Two']\n'TRCK' ['3/12']\n" + rest + "'TYER' ['1993']\n" +
                          end);
    } else {
      EXPECT_EQ(said, "4 []\n" + common + "'TCON' ['Jazz']\n'TDRC' ['1993-07-05 22:15']\n" + title +
                          "'TMCL' [['violin', 'V']]\n'TPE1' ['One', 'Two']\n'TRCK' ['3/12']\n" +
                          rest + end);
    }
  }
}

}  // namespace
}  // namespace corvin::formats

#endif
