// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/tags_json.h"

#include <cstdint>
#include <span>
#include <string_view>

#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string to_base64(std::span<const std::byte> data) {
  std::string text;
  for (size_t i = 0; i < data.size(); i += 3) {
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < data.size() ? static_cast<uint32_t>(data[i + k]) : 0);
    for (size_t k = 0; k < 4; ++k)
      text += i + k <= data.size() ? kDigits[group >> 6 * (3 - k) & 63] : '=';
  }
  return text;
}

}  // namespace

std::string from_base64(const std::string& text) {
  std::string data;
  uint32_t group = 0;
  int bits = 0;
  std::string_view digits = text;
  while (digits.ends_with('=')) digits.remove_suffix(1);
  for (const char digit : digits) {
    const size_t value = kDigits.find(digit);
    if (value == std::string_view::npos) throw Error(CORVIN_E_ARGUMENT);
    group = group << 6 | static_cast<uint32_t>(value);
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    data += static_cast<char>(group >> bits & 0xff);
  }
  return data;
}

Json json_of(const std::string& path, const TagSet& tags, bool with_data) {
  Json object = {{"file", utf8_of(path)}, {"fields", Json::object()}, {"pictures", Json::array()}};
  for (const std::string& name : tags.names()) {
    Json& list = object["fields"][name] = Json::array();
    uint32_t i = 0;
    for (const std::string& text : tags.values(name)) {
      const std::string language = tags.language(name, i++);
      list.push_back(language.empty() ? Json(text) : Json{{"text", text}, {"language", language}});
    }
  }
  for (const Picture& picture : tags.pictures()) {
    Json one = {{"type", picture.type},
                {"mime", picture.mime},
                {"description", picture.description},
                {"bytes", picture.data.size()}};
    if (with_data) one["data"] = to_base64(picture.data);
    object["pictures"].push_back(std::move(one));
  }
  for (const TagFrame& frame : tags.frames()) object["frames"].push_back(frame.id);
  return object;
}

void read_json(const Json& object, TagSet& tags) {
  for (const std::string& name : tags.names()) tags.remove(name);
  while (!tags.pictures().empty()) tags.remove_picture(0);
  for (const auto& [name, values] : object.at("fields").items()) {
    for (const Json& value : values) {
      if (value.is_string())
        tags.add(name, value.get<std::string>());
      else
        tags.add(name, value.at("text").get<std::string>(),
                 value.at("language").get<std::string>());
    }
  }
  for (const Json& picture : object.at("pictures")) {
    const std::string data = from_base64(picture.at("data").get<std::string>());
    tags.add_picture({picture.at("type").get<uint32_t>(), picture.at("mime").get<std::string>(),
                      picture.at("description").get<std::string>(),
                      std::as_bytes(std::span(data))});
  }
}

}  // namespace corvin::cli
