// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/tag_set.h"

#include <algorithm>
#include <utility>

namespace corvin::formats {
namespace {

// The C library's own function depends on the locale.
char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

auto Named(std::string_view name) {
  return [name](const TagField& field) { return IsSameName(field.name, name); };
}

}  // namespace

bool IsSameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Upper(x) == Upper(y); });
}

std::optional<std::string_view> DescriptionIn(std::string_view name, std::string_view base) {
  if (!IsSameName(name.substr(0, base.size()), base)) return std::nullopt;
  const std::string_view rest = name.substr(base.size());
  if (rest.empty()) return rest;
  if (rest[0] != ':') return std::nullopt;
  return rest.substr(1);
}

bool HasLanguages(std::string_view name) {
  return DescriptionIn(name, "COMMENT") || DescriptionIn(name, "LYRICS");
}

const TagField* TagSet::Find(std::string_view name) const {
  const auto found = std::find_if(fields.begin(), fields.end(), Named(name));
  return found == fields.end() ? nullptr : &*found;
}

bool TagSet::Add(std::string_view name, TagValue value) {
  const auto found = std::find_if(fields.begin(), fields.end(), Named(name));
  if (found == fields.end()) {
    fields.push_back({std::string(name), {std::move(value)}});
    return true;
  }
  auto& values = found->values;
  if (std::find(values.begin(), values.end(), value) != values.end()) return false;
  values.push_back(std::move(value));
  return true;
}

bool TagSet::Remove(std::string_view name) { return std::erase_if(fields, Named(name)) > 0; }

}  // namespace corvin::formats
