// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/container_tags.h"

#include <string_view>
#include <utility>

namespace corvin::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

void PutNumber(Bytes& to, std::uint64_t value, int width) {
  for (int i = width - 1; i >= 0; --i) to.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

void PutChunk(Bytes& to, std::string_view id, ByteSpan body) {
  to.insert(to.end(), id.begin(), id.end());
  PutNumber(to, body.size(), 8);
  to.insert(to.end(), body.begin(), body.end());
  if (body.size() % 2 != 0) to.push_back(0);
}

void PutName(Bytes& to, std::string_view id, const std::string& name) {
  if (name.empty()) return;
  Bytes body;
  body.reserve(4 + name.size());
  PutNumber(body, name.size(), 4);
  body.insert(body.end(), name.begin(), name.end());
  PutChunk(to, id, body);
}

std::string AllOf(const TagField* field) {
  std::string text;
  if (field == nullptr) return text;
  for (const TagValue& value : field->values) text += (text.empty() ? "" : "; ") + value.text;
  return text;
}

}  // namespace

ContainerTags MakeContainerTags(const TagSet& set, std::vector<std::uint8_t> id3) {
  return {std::move(id3), AllOf(set.Find("TITLE")), AllOf(set.Find("ARTIST")),
          set.Find("COMMENT") != nullptr};
}

std::vector<std::uint8_t> DsdiffTagChunks(const ContainerTags& tags, ByteSpan master) {
  Bytes names(master.begin(), master.end());
  PutName(names, "DIAR", tags.artist);
  PutName(names, "DITI", tags.title);
  Bytes chunks;
  if (!names.empty()) PutChunk(chunks, "DIIN", names);
  if (!tags.id3.empty()) PutChunk(chunks, "ID3 ", tags.id3);
  return chunks;
}

}  // namespace corvin::formats
