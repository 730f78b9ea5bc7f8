// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What other kinds of tags call the library's fields, both ways: pairs of a kind's name and the
// field. Fields without a pair go by their own name where the kind takes any.

#ifndef CORVIN_CLI_FILES_TAG_NAMES_H_
#define CORVIN_CLI_FILES_TAG_NAMES_H_

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "corvin.hpp"

namespace corvin::cli {

using TagName = std::pair<std::string_view, std::string_view>;

/** RIFF INFO. When a field has several, the first is written. */
inline constexpr TagName kInfoNames[] = {
    {"INAM", "TITLE"},       {"IART", "ARTIST"},
    {"IPRD", "ALBUM"},       {"IPRT", "TRACKNUMBER"},
    {"ITRK", "TRACKNUMBER"}, {"IGNR", "GENRE"},
    {"ICRD", "DATE"},        {"ICMT", "COMMENT"},
    {"ICOP", "COPYRIGHT"},   {"IMUS", "COMPOSER"},
    {"IWRI", "LYRICIST"},    {"ISRC", "ISRC"},
    {"IMED", "MEDIA"},       {"ILNG", "LANGUAGE"},
    {"ITCH", "ENCODEDBY"},   {"ISFT", "ENCODERSETTINGS"},
};

/** APEv2, whose names mean the same in letters of either case. */
inline constexpr TagName kApeNames[] = {
    {"Title", "TITLE"},       {"Subtitle", "SUBTITLE"},
    {"Artist", "ARTIST"},     {"Album Artist", "ALBUMARTIST"},
    {"Album", "ALBUM"},       {"Conductor", "CONDUCTOR"},
    {"MixArtist", "REMIXER"}, {"DiscSubtitle", "DISCSUBTITLE"},
    {"Track", "TRACKNUMBER"}, {"Disc", "DISCNUMBER"},
    {"Genre", "GENRE"},       {"Year", "DATE"},
    {"Composer", "COMPOSER"}, {"Lyricist", "LYRICIST"},
    {"Comment", "COMMENT"},   {"Lyrics", "LYRICS"},
    {"Label", "LABEL"},       {"Copyright", "COPYRIGHT"},
};

/** CAF's information chunk, of which these are the usual names. */
inline constexpr TagName kCafNames[] = {
    {"title", "TITLE"},       {"artist", "ARTIST"},       {"album", "ALBUM"},
    {"composer", "COMPOSER"}, {"lyricist", "LYRICIST"},   {"track number", "TRACKNUMBER"},
    {"genre", "GENRE"},       {"recorded date", "DATE"},  {"comments", "COMMENT"},
    {"tempo", "BPM"},         {"copyright", "COPYRIGHT"}, {"key signature", "KEY"},
};

inline bool same_name(std::string_view a, std::string_view b) {
  const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return upper(x) == upper(y); });
}

/** The field of a kind's name; the name itself when there is no pair. */
inline std::string_view field_of(std::string_view name, std::span<const TagName> names) {
  for (const auto& [other, field] : names)
    if (same_name(other, name)) return field;
  return name;
}

/** The kind's name of a field; empty when there is no pair. */
inline std::string_view name_of(std::string_view field, std::span<const TagName> names) {
  for (const auto& [other, own] : names)
    if (own == field) return other;
  return {};
}

/** All values of a field, for kinds that hold one. */
inline std::string joined_values(const TagSet& tags, const std::string& field) {
  std::string all;
  for (const std::string& value : tags.values(field)) all += (all.empty() ? "" : "; ") + value;
  return all;
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_TAG_NAMES_H_
