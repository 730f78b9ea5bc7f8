// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The values of ID3v2 that are more than a text: genres by number, dates in three frames, people
// with what they did.

#ifndef CORVIN_FORMATS_TAGS_ID3_VALUES_H_
#define CORVIN_FORMATS_TAGS_ID3_VALUES_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvin::formats {

/// The genres of one text of a TCON frame: "(17)" and "17" stand for Rock, "(4)Eurodisco" for two,
/// "((" for a parenthesis.
std::vector<std::string> GenresOf(std::string_view text);

/// The text that stands for a genre.
std::string TextOfGenre(const std::string& genre);

/// The frames of a date in version 2.3; empty where it has no such part.
struct OldDate {
  std::string year;  ///< TYER: "1993"
  std::string day;   ///< TDAT: day and month, "0507"
  std::string time;  ///< TIME: "2215"
};

/// "1993-07-05T22:15", as much of it as there is.
std::string DateOf(const OldDate& date);

/// As much of a date as version 2.3 can tell; without a year for what is no date.
OldDate OldDateOf(std::string_view date);

/// What somebody did.
struct Person {
  std::string role;
  std::string name;
};

/// The field of a role that has one ("producer": PRODUCER); else empty.
std::string_view FieldOfRole(std::string_view role);

/// The role that a field stands for; else empty.
std::string_view RoleOfField(std::string_view field);

/// "name (role)", as PERFORMER has it, and back.
std::string TextOfPerformer(const Person& person);
Person PerformerOf(std::string_view text);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_ID3_VALUES_H_
