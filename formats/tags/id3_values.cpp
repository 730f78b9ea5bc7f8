// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/id3_values.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "corvin.h"
#include "formats/tags/tag_set.h"

namespace corvin::formats {
namespace {

bool IsNumber(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Nothing for what refers to no genre known.
std::optional<std::string> GenreOfReference(std::string_view reference) {
  if (reference == "RX") return "Remix";
  if (reference == "CR") return "Cover";
  if (!IsNumber(reference) || reference.size() > 3) return std::nullopt;
  const int number = std::stoi(std::string(reference));
  if (number >= CORVIN_GENRE_COUNT) return std::nullopt;
  return genre_names[number];
}

constexpr std::pair<std::string_view, std::string_view> kRoles[] = {
    {"arranger", "ARRANGER"}, {"engineer", "ENGINEER"}, {"producer", "PRODUCER"},
    {"mix", "MIXER"},         {"DJ-mix", "DJMIXER"},
};

// Stands for a performer of whom no instrument is known.
constexpr std::string_view kPlainPerformer = "performer";

}  // namespace

std::vector<std::string> GenresOf(std::string_view text) {
  if (const auto genre = GenreOfReference(text)) return {*genre};
  std::vector<std::string> genres;
  while (text.starts_with('(') && !text.starts_with("((")) {
    const std::size_t end = text.find(')');
    if (end == std::string_view::npos) break;
    const auto genre = GenreOfReference(text.substr(1, end - 1));
    if (!genre) break;
    genres.push_back(*genre);
    text.remove_prefix(end + 1);
  }
  if (text.starts_with("((")) text.remove_prefix(1);
  if (!text.empty()) genres.emplace_back(text);
  return genres;
}

std::string TextOfGenre(const std::string& genre) {
  const bool is_itself = GenresOf(genre) == std::vector<std::string>{genre};
  return is_itself || !genre.starts_with('(') ? genre : "(" + genre;
}

std::string DateOf(const OldDate& date) {
  std::string text = date.year;
  if (date.year.size() != 4 || !IsNumber(date.year)) return text;
  if (date.day.size() != 4 || !IsNumber(date.day)) return text;
  text.append("-").append(date.day, 2).append("-").append(date.day, 0, 2);
  if (date.time.size() != 4 || !IsNumber(date.time)) return text;
  return text.append("T").append(date.time, 0, 2).append(":").append(date.time, 2);
}

OldDate OldDateOf(std::string_view date) {
  const auto part = [&](std::size_t at, std::size_t count, std::string_view marks) {
    const bool is_there = date.size() >= at + count &&
                          (at == 0 || marks.find(date[at - 1]) != std::string_view::npos) &&
                          IsNumber(date.substr(at, count));
    return is_there ? std::string(date.substr(at, count)) : std::string();
  };
  OldDate old;
  const std::string year = part(0, 4, "");
  if (year.empty() || (date.size() > 4 && date[4] != '-')) return old;
  old.year = year;
  const std::string month = part(5, 2, "-");
  const std::string day = part(8, 2, "-");
  if (month.empty() || day.empty()) return old;
  old.day = day + month;
  const std::string hour = part(11, 2, "T ");
  const std::string minute = part(14, 2, ":");
  if (!hour.empty() && !minute.empty()) old.time = hour + minute;
  return old;
}

std::string_view FieldOfRole(std::string_view role) {
  for (const auto& [name, field] : kRoles) {
    if (IsSameName(name, role)) return field;
  }
  return {};
}

std::string_view RoleOfField(std::string_view field) {
  for (const auto& [role, name] : kRoles) {
    if (IsSameName(name, field)) return role;
  }
  return {};
}

std::string TextOfPerformer(const Person& person) {
  if (person.role.empty() || IsSameName(person.role, kPlainPerformer)) return person.name;
  return person.name + " (" + person.role + ")";
}

Person PerformerOf(std::string_view text) {
  const std::size_t open = text.rfind(" (");
  if (!text.ends_with(')') || open == std::string_view::npos || open == 0) {
    return {std::string(kPlainPerformer), std::string(text)};
  }
  return {std::string(text.substr(open + 2, text.size() - open - 3)),
          std::string(text.substr(0, open))};
}

}  // namespace corvin::formats
